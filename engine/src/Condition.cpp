// Condition: recursive-descent parser into a node array, and its evaluator.
#include "Condition.h"

#include <cctype>
#include <cmath>
#include <cstring>

#include "Fail.h"
#include "ctisam.h"

namespace cte {

struct Condition::Node {
  enum Kind : uint8_t { kNum, kText, kField, kNeg, kNot, kBinary };
  explicit Node(Kind k) : kind(k) {}

  Kind kind;
  bool text = false;  // the node's value is text
  std::string op;     // kBinary: the operator
  double num = 0;
  std::string str;
  int field = -1;
  int a = -1, b = -1;
};

namespace {

bool IsText(uint16_t type) {
  switch (type) {
    case CT_BOOL: case CT_CHAR: case CT_CHARU: case CT_INT2: case CT_INT2U: case CT_INT4:
    case CT_INT4U: case CT_MONEY: case CT_DATE: case CT_TIME: case CT_SFLOAT: case CT_DFLOAT:
    case CT_EFLOAT:
      return false;
    default: return true;
  }
}

class Parser {
 public:
  Parser(const std::string& s, const std::vector<FieldDef>& fields, std::vector<Condition::Node>& nodes)
      : s_(s), fields_(fields), nodes_(nodes) {}

  int Parse() {
    int root = Or();
    Skip();
    if (at_ != s_.size()) Throw(CT_EBADCOND);
    if (nodes_[root].text) Throw(CT_EBADCOND);
    return root;
  }

 private:
  using Node = Condition::Node;
  void Skip() {
    while (at_ < s_.size() && std::isspace(static_cast<unsigned char>(s_[at_]))) ++at_;
  }
  bool Eat(const char* tok) {
    Skip();
    size_t n = std::strlen(tok);
    if (s_.compare(at_, n, tok) != 0) return false;
    // "<" must not swallow the start of "<=" or "<>", "=" not that of "==", "!" not "!=".
    if (n == 1 && at_ + 1 < s_.size() && std::strchr("<>=!", tok[0]) && s_[at_ + 1] == '=') return false;
    if (n == 1 && tok[0] == '<' && at_ + 1 < s_.size() && s_[at_ + 1] == '>') return false;
    at_ += n;
    return true;
  }
  int Add(Node n) {
    nodes_.push_back(std::move(n));
    return static_cast<int>(nodes_.size()) - 1;
  }
  int Binary(const std::string& op, int a, int b) {
    bool ta = nodes_[a].text, tb = nodes_[b].text;
    Node n{Node::kBinary};
    n.op = op;
    n.a = a;
    n.b = b;
    if (op == "&&" || op == "||") {
      if (ta || tb) Throw(CT_EBADCOND);
    } else if (op == "+") {
      if (ta != tb) Throw(CT_EBADCOND);
      n.text = ta;
    } else if (op == "-" || op == "*" || op == "/" || op == "%") {
      if (ta || tb) Throw(CT_EBADCOND);
    } else if (ta != tb) {
      Throw(CT_EBADCOND);
    }
    return Add(std::move(n));
  }
  int Or() {
    int a = And();
    while (Eat("||")) a = Binary("||", a, And());
    return a;
  }
  int And() {
    int a = Not();
    while (Eat("&&")) a = Binary("&&", a, Not());
    return a;
  }
  int Not() {
    if (Eat("!")) {
      int a = Not();
      if (nodes_[a].text) Throw(CT_EBADCOND);
      Node n{Node::kNot};
      n.a = a;
      return Add(std::move(n));
    }
    return Compare();
  }
  int Compare() {
    int a = Sum();
    for (const char* op : {"==", "!=", "<>", "<=", ">=", "=", "<", ">"}) {
      if (Eat(op)) {
        std::string o = op;
        if (o == "=") o = "==";
        if (o == "<>") o = "!=";
        return Binary(o, a, Sum());
      }
    }
    return a;
  }
  int Sum() {
    int a = Product();
    for (;;) {
      if (Eat("+")) a = Binary("+", a, Product());
      else if (Eat("-")) a = Binary("-", a, Product());
      else return a;
    }
  }
  int Product() {
    int a = Unary();
    for (;;) {
      if (Eat("*")) a = Binary("*", a, Unary());
      else if (Eat("/")) a = Binary("/", a, Unary());
      else if (Eat("%")) a = Binary("%", a, Unary());
      else return a;
    }
  }
  int Unary() {
    if (Eat("-")) {
      int a = Unary();
      if (nodes_[a].text) Throw(CT_EBADCOND);
      Node n{Node::kNeg};
      n.a = a;
      return Add(std::move(n));
    }
    return Primary();
  }
  int Primary() {
    Skip();
    if (at_ >= s_.size()) Throw(CT_EBADCOND);
    char c = s_[at_];
    if (c == '(') {
      ++at_;
      int a = Or();
      if (!Eat(")")) Throw(CT_EBADCOND);
      return a;
    }
    if (c == '\'' || c == '"') {
      size_t end = s_.find(c, at_ + 1);
      if (end == std::string::npos) Throw(CT_EBADCOND);
      Node n{Node::kText};
      n.text = true;
      n.str = s_.substr(at_ + 1, end - at_ - 1);
      at_ = end + 1;
      return Add(std::move(n));
    }
    if (std::isdigit(static_cast<unsigned char>(c)) || c == '.') {
      size_t used = 0;
      double v = 0;
      try {
        v = std::stod(s_.substr(at_), &used);
      } catch (...) {
        Throw(CT_EBADCOND);
      }
      at_ += used;
      Node n{Node::kNum};
      n.num = v;
      return Add(std::move(n));
    }
    if (std::isalpha(static_cast<unsigned char>(c)) || c == '_') {
      size_t end = at_;
      while (end < s_.size() && (std::isalnum(static_cast<unsigned char>(s_[end])) || s_[end] == '_')) ++end;
      std::string name = s_.substr(at_, end - at_);
      at_ = end;
      for (size_t i = 0; i < fields_.size(); ++i) {
        if (fields_[i].name == name) {
          Node n{Node::kField};
          n.field = static_cast<int>(i);
          n.text = IsText(fields_[i].type);
          return Add(std::move(n));
        }
      }
      Throw(CT_EBADCOND);
    }
    Throw(CT_EBADCOND);
  }

  const std::string& s_;
  const std::vector<FieldDef>& fields_;
  std::vector<Node>& nodes_;
  size_t at_ = 0;
};

int64_t LoadSigned(const uint8_t* p, size_t w) {
  uint64_t v = 0;
  for (size_t i = w; i-- > 0;) v = (v << 8) | p[i];
  if (w < 8 && (v >> (8 * w - 1)) & 1) v |= ~uint64_t{0} << (8 * w);
  return static_cast<int64_t>(v);
}

uint64_t LoadUnsigned(const uint8_t* p, size_t w) {
  uint64_t v = 0;
  for (size_t i = w; i-- > 0;) v = (v << 8) | p[i];
  return v;
}

}  // namespace

std::shared_ptr<const Condition> Condition::Parse(const std::string& text,
                                                  const std::vector<FieldDef>& fields) {
  if (fields.empty()) Throw(RNOT_ERR);
  auto c = std::make_shared<Condition>();
  c->fields_ = fields;
  c->root_ = Parser(text, c->fields_, c->nodes_).Parse();
  return c;
}

Condition::Value Condition::Field(int index, const uint8_t* rec, size_t n) const {
  // Fields follow one another; a variable-length value takes the room its own length gives.
  size_t off = 0;
  size_t width = 0;
  for (int i = 0; i <= index; ++i) {
    const FieldDef& f = fields_[i];
    width = f.len;
    if (off < n) {
      size_t left = n - off;
      switch (f.type) {
        case CT_STRING: {
          const void* z = std::memchr(rec + off, 0, left);
          width = z ? static_cast<const uint8_t*>(z) - (rec + off) + 1 : left;
          break;
        }
        case CT_PSTRING: width = 1 + (left >= 1 ? LoadUnsigned(rec + off, 1) : 0); break;
        case CT_2STRING: width = 2 + (left >= 2 ? LoadUnsigned(rec + off, 2) : 0); break;
        case CT_4STRING: width = 4 + (left >= 4 ? LoadUnsigned(rec + off, 4) : 0); break;
        default: break;
      }
    }
    if (i < index) off += width;
  }
  Value v;
  const FieldDef& f = fields_[index];
  v.text = IsText(f.type);
  if (off >= n) return v;
  const uint8_t* p = rec + off;
  size_t avail = std::min(width, n - off);
  if (!v.text) {
    size_t w = std::min<size_t>(f.len ? f.len : 4, avail);
    switch (f.type) {
      case CT_SFLOAT:
        if (w >= 4) {
          float x;
          std::memcpy(&x, p, 4);
          v.num = x;
        }
        break;
      case CT_DFLOAT:
      case CT_EFLOAT:
        if (w >= 8) {
          double x;
          std::memcpy(&x, p, 8);
          v.num = x;
        }
        break;
      case CT_CHARU: case CT_INT2U: case CT_INT4U: case CT_TIME:
        v.num = static_cast<double>(LoadUnsigned(p, std::min<size_t>(w, 8)));
        break;
      default: v.num = static_cast<double>(LoadSigned(p, std::min<size_t>(w, 8))); break;
    }
    return v;
  }
  size_t prefix = 0;
  switch (f.type) {
    case CT_FPSTRING: case CT_PSTRING: prefix = 1; break;
    case CT_F2STRING: case CT_2STRING: prefix = 2; break;
    case CT_F4STRING: case CT_4STRING: prefix = 4; break;
    default: break;
  }
  if (prefix) {
    size_t len = avail >= prefix ? LoadUnsigned(p, prefix) : 0;
    v.str.assign(reinterpret_cast<const char*>(p + std::min(prefix, avail)),
                 std::min(len, avail > prefix ? avail - prefix : 0));
    return v;
  }
  const void* z = std::memchr(p, 0, avail);
  size_t len = z ? static_cast<const uint8_t*>(z) - p : avail;
  v.str.assign(reinterpret_cast<const char*>(p), len);
  if (f.type == CT_FSTRING)
    while (!v.str.empty() && v.str.back() == ' ') v.str.pop_back();
  return v;
}

Condition::Value Condition::Eval(int at, const uint8_t* rec, size_t n) const {
  const Node& nd = nodes_[at];
  Value r;
  switch (nd.kind) {
    case Node::kNum: r.num = nd.num; return r;
    case Node::kText:
      r.text = true;
      r.str = nd.str;
      return r;
    case Node::kField: return Field(nd.field, rec, n);
    case Node::kNeg: r.num = -Eval(nd.a, rec, n).num; return r;
    case Node::kNot: r.num = Eval(nd.a, rec, n).num == 0 ? 1 : 0; return r;
    case Node::kBinary: break;
  }
  const std::string& op = nd.op;
  if (op == "&&") {
    r.num = Eval(nd.a, rec, n).num != 0 && Eval(nd.b, rec, n).num != 0;
    return r;
  }
  if (op == "||") {
    r.num = Eval(nd.a, rec, n).num != 0 || Eval(nd.b, rec, n).num != 0;
    return r;
  }
  Value a = Eval(nd.a, rec, n), b = Eval(nd.b, rec, n);
  if (op == "+" && a.text) {
    r.text = true;
    r.str = a.str + b.str;
    return r;
  }
  if (op == "+") r.num = a.num + b.num;
  else if (op == "-") r.num = a.num - b.num;
  else if (op == "*") r.num = a.num * b.num;
  else if (op == "/") r.num = b.num == 0 ? 0 : a.num / b.num;
  else if (op == "%") r.num = b.num == 0 ? 0 : std::fmod(a.num, b.num);
  else {
    int c = a.text ? a.str.compare(b.str) : (a.num < b.num ? -1 : a.num > b.num ? 1 : 0);
    if (op == "==") r.num = c == 0;
    else if (op == "!=") r.num = c != 0;
    else if (op == "<") r.num = c < 0;
    else if (op == "<=") r.num = c <= 0;
    else if (op == ">") r.num = c > 0;
    else r.num = c >= 0;
  }
  return r;
}

bool Condition::Accepts(const uint8_t* rec, size_t n) const { return Eval(root_, rec, n).num != 0; }

}  // namespace cte
