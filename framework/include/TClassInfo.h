// Published-property tables and the class registry used by component streaming (framework layer).
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "Exception.h"
#include "TSet.h"
#include "Variant.h"

namespace fw {

class TPersistent;
class TComponent;
class TClassInfo;

/// Kind of a published property, which decides how it is read from and written to a form file.
enum TPropKind : uint8_t {
  pkInteger,    // up to 32-bit integer; value as varInteger/varInt64
  pkInt64,      // 64-bit integer
  pkFloat,      // float or double; form value is a number
  pkString,     // std::string; form value is a string
  pkBoolean,    // True / False
  pkEnum,       // enumeration by member name; value is the ordinal (varInteger)
  pkSet,        // [a, b]; value is the member mask (varInt64, bit n = ordinal n, ordinals 0..63)
  pkComponent,  // reference to a component by name, resolved after the whole form is read
  pkObject,     // owned sub-object (TPersistent): "Sub.Prop = v", a list "( ... )" for TStrings,
                // a collection "< item ... end >" for TCollection
  pkBinary,     // "{ hex }"; value is a byte array variant
  pkCurrency,   // Currency (int64 x 10000); value is varCurrency; form value a number, "12.5c"
};

/// One published property. Simple kinds use `Get`/`Set`; pkComponent uses `GetComponent` /
/// `SetComponent`; pkObject only `GetObject`. A missing setter makes the property read-only
/// (the writer skips it; the reader refuses it).
struct TPropInfo {
  std::string Name;
  TPropKind Kind = pkInteger;
  /// Member names by ordinal for pkEnum and pkSet.
  std::vector<std::string> Names;
  /// Value not written to a form file; Empty means "always written".
  Variant Default;
  std::function<Variant(const TPersistent&)> Get;
  std::function<void(TPersistent&, const Variant&)> Set;
  std::function<TComponent*(const TPersistent&)> GetComponent;
  std::function<void(TPersistent&, TComponent*)> SetComponent;
  std::function<TPersistent*(TPersistent&)> GetObject;
  /// pkComponent: the class a referenced component must have (so a designer can offer the
  /// matching components of a form); null for other kinds.
  const TClassInfo& (*ComponentClass)() = nullptr;

  bool ReadOnly() const { return Kind == pkObject ? false : !(Set || SetComponent); }
  /// Ordinal of member `name` (case-insensitive) or -1.
  int OrdinalOf(std::string_view name) const;
};

/// A published class: name, parent class, property table in published order, and a factory
/// when components of the class can be created by name (form reading).
class TClassInfo {
 public:
  using Factory = std::function<TComponent*(TComponent* owner)>;
  TClassInfo(std::string name, const TClassInfo* parent, Factory create = nullptr);

  const std::string& ClassName() const { return FName; }
  const TClassInfo* Parent() const { return FParent; }
  bool InheritsFrom(const TClassInfo& other) const;
  bool CanCreate() const { return static_cast<bool>(FCreate); }
  /// Creates a component of this class owned by `owner`; raises EComponentError when the class
  /// is abstract (no factory).
  TComponent* Create(TComponent* owner) const;

  /// The property `name` (case-insensitive) of this class or an ancestor, or nullptr.
  const TPropInfo* FindProperty(std::string_view name) const;
  /// All properties in published order, ancestors' first.
  std::vector<const TPropInfo*> Properties() const;
  const std::vector<TPropInfo>& OwnProperties() const { return FProps; }
  /// Appends a property; raises EComponentError when the class already has one of that name.
  void AddProperty(TPropInfo prop);

 private:
  std::string FName;
  const TClassInfo* FParent;
  Factory FCreate;
  std::vector<TPropInfo> FProps;
};

/// Builds the table of class `C` in published order. Typical use, inside C's source file:
///
///     const fw::TClassInfo& TMyTable::StaticClass() {
///       static const fw::TClassInfo info =
///           fw::TClassBuilder<TMyTable>("TMyTable", &TDataSet::StaticClass())
///               .Creatable()
///               .Property("TableName", &TMyTable::TableName, &TMyTable::SetTableName, "")
///               .Property("ReadOnly", &TMyTable::ReadOnly, &TMyTable::SetReadOnly, false)
///               .Enum("TableType", {"ttA", "ttB"}, &TMyTable::TableType, &TMyTable::SetTableType, ttA)
///               .Reference("Connection", &TMyTable::Connection, &TMyTable::SetConnection)
///               .Object("FieldDefs", &TMyTable::FieldDefs)
///               .Build();
///       return info;
///     }
///
/// Getters are const member functions returning the value (or a const reference); setters take
/// the value (or a const reference). `Property` deduces the kind from the getter's type: bool,
/// integers, floating point or std::string. Setters run during form reading with csLoading set.
/// Values from a form that do not fit the C++ type raise EConvertError.
template <class C>
class TClassBuilder {
 public:
  TClassBuilder(std::string name, const TClassInfo* parent) : FName(std::move(name)), FParent(parent) {}

  /// Components of C can be created by name: `new C(owner)`.
  TClassBuilder& Creatable() {
    FCreate = [](TComponent* owner) -> TComponent* { return new C(owner); };
    return *this;
  }

  template <class G, class S>
  TClassBuilder& Property(std::string name, G get, S set, Variant def = Variant()) {
    using T = std::remove_cvref_t<std::invoke_result_t<G, const C&>>;
    static_assert(!std::is_enum_v<T>, "use Enum() for enumerations");
    TPropInfo p;
    p.Name = std::move(name);
    p.Kind = std::is_same_v<T, bool> ? pkBoolean
             : std::is_integral_v<T> ? (sizeof(T) > 4 || std::is_same_v<T, uint32_t> ? pkInt64 : pkInteger)
             : std::is_floating_point_v<T> ? pkFloat
                                           : pkString;
    static_assert(std::is_arithmetic_v<T> || std::is_same_v<T, std::string>, "unsupported property type");
    p.Default = std::move(def);
    p.Get = [get](const TPersistent& o) { return Variant(static_cast<ValueOf<T>>((Self(o).*get)())); };
    if constexpr (!std::is_null_pointer_v<S>)
      p.Set = [set](TPersistent& o, const Variant& v) { (Self(o).*set)(FromVariant<T>(v)); };
    Add(std::move(p));
    return *this;
  }

  /// Enumeration property; `names` lists the members by ordinal from 0.
  template <class G, class S>
  TClassBuilder& Enum(std::string name, std::vector<std::string> names, G get, S set, Variant def = Variant()) {
    using T = std::remove_cvref_t<std::invoke_result_t<G, const C&>>;
    static_assert(std::is_enum_v<T>, "Enum() needs an enumeration getter");
    TPropInfo p;
    p.Name = std::move(name);
    p.Kind = pkEnum;
    p.Names = std::move(names);
    if (!def.IsEmpty()) def = Variant(static_cast<int32_t>(def.AsInt64()));
    p.Default = std::move(def);
    p.Get = [get](const TPersistent& o) { return Variant(static_cast<int32_t>((Self(o).*get)())); };
    if constexpr (!std::is_null_pointer_v<S>) {
      const int count = static_cast<int>(p.Names.size());
      p.Set = [set, count](TPersistent& o, const Variant& v) {
        const int64_t ord = v.AsInt64();
        if (ord < 0 || ord >= count) throw EConvertError("Enumeration value out of range");
        (Self(o).*set)(static_cast<T>(ord));
      };
    }
    Add(std::move(p));
    return *this;
  }

  /// Set property (TSet<E> with ordinals 0..63); `names` lists the members by ordinal.
  template <class G, class S>
  TClassBuilder& Set(std::string name, std::vector<std::string> names, G get, S set, Variant def = Variant()) {
    using T = std::remove_cvref_t<std::invoke_result_t<G, const C&>>;
    TPropInfo p;
    p.Name = std::move(name);
    p.Kind = pkSet;
    p.Names = std::move(names);
    p.Default = std::move(def);
    p.Get = [get](const TPersistent& o) { return Variant(static_cast<int64_t>((Self(o).*get)().Mask())); };
    if constexpr (!std::is_null_pointer_v<S>)
      p.Set = [set](TPersistent& o, const Variant& v) {
        (Self(o).*set)(T::FromMask(static_cast<uint64_t>(v.AsInt64())));
      };
    Add(std::move(p));
    return *this;
  }

  /// Reference to another component (getter returns `D*`, setter takes `D*`, D a TComponent
  /// descendant). Assigning a component of another class raises EConvertError.
  template <class G, class S>
  TClassBuilder& Reference(std::string name, G get, S set) {
    using P = std::remove_cvref_t<std::invoke_result_t<G, const C&>>;
    using D = std::remove_pointer_t<P>;
    TPropInfo p;
    p.Name = std::move(name);
    p.Kind = pkComponent;
    p.ComponentClass = &D::StaticClass;
    p.GetComponent = [get](const TPersistent& o) -> TComponent* { return (Self(o).*get)(); };
    p.SetComponent = [set, pname = p.Name](TPersistent& o, TComponent* c) {
      D* d = dynamic_cast<D*>(c);
      if (c != nullptr && d == nullptr) throw EConvertError("Invalid component for property " + pname);
      (Self(o).*set)(d);
    };
    Add(std::move(p));
    return *this;
  }

  /// Owned sub-object (getter returns a pointer to a TPersistent descendant owned by C).
  template <class G>
  TClassBuilder& Object(std::string name, G get) {
    TPropInfo p;
    p.Name = std::move(name);
    p.Kind = pkObject;
    p.GetObject = [get](TPersistent& o) -> TPersistent* { return (static_cast<C&>(o).*get)(); };
    Add(std::move(p));
    return *this;
  }

  /// Currency property (getter returns Currency, setter takes Currency); `def` in Currency units
  /// (x 10000).
  template <class G, class S>
  TClassBuilder& CurrencyProperty(std::string name, G get, S set, Variant def = Variant()) {
    TPropInfo p;
    p.Name = std::move(name);
    p.Kind = pkCurrency;
    if (!def.IsEmpty()) def = Variant::FromCurrency(def.AsInt64());
    p.Default = std::move(def);
    p.Get = [get](const TPersistent& o) { return Variant::FromCurrency((Self(o).*get)()); };
    if constexpr (!std::is_null_pointer_v<S>)
      p.Set = [set](TPersistent& o, const Variant& v) { (Self(o).*set)(v.AsCurrency()); };
    Add(std::move(p));
    return *this;
  }

  /// Byte-array property (getter/setter of std::string holding raw bytes).
  template <class G, class S>
  TClassBuilder& Binary(std::string name, G get, S set) {
    TPropInfo p;
    p.Name = std::move(name);
    p.Kind = pkBinary;
    p.Get = [get](const TPersistent& o) {
      const std::string bytes = (Self(o).*get)();
      return VarByteArrayOf(bytes.data(), bytes.size());
    };
    p.Set = [set](TPersistent& o, const Variant& v) { (Self(o).*set)(std::string(v.Bytes())); };
    Add(std::move(p));
    return *this;
  }

  /// The finished table; raises EComponentError when two properties share a name.
  TClassInfo Build() {
    TClassInfo info(FName, FParent, FCreate);
    for (TPropInfo& p : FProps) info.AddProperty(std::move(p));
    FProps.clear();
    return info;
  }

 private:
  template <class T>
  using ValueOf = std::conditional_t<std::is_same_v<T, bool> || std::is_same_v<T, std::string>, T,
                  std::conditional_t<std::is_floating_point_v<T>, double,
                  std::conditional_t<(sizeof(T) > 4 || std::is_same_v<T, uint32_t>), int64_t, int32_t>>>;

  static const C& Self(const TPersistent& o) { return static_cast<const C&>(o); }
  static C& Self(TPersistent& o) { return static_cast<C&>(o); }

  template <class T>
  static T FromVariant(const Variant& v) {
    if constexpr (std::is_same_v<T, bool>) {
      return v.AsBoolean();
    } else if constexpr (std::is_integral_v<T>) {
      const int64_t n = v.AsInt64();
      if constexpr (sizeof(T) < 8) {
        if (n < static_cast<int64_t>(std::numeric_limits<T>::min()) ||
            n > static_cast<int64_t>(std::numeric_limits<T>::max()))
          throw EConvertError("Value " + std::to_string(n) + " out of range");
      }
      return static_cast<T>(n);
    } else if constexpr (std::is_floating_point_v<T>) {
      return static_cast<T>(v.AsDouble());
    } else {
      return v.AsString();
    }
  }

  void Add(TPropInfo p) { FProps.push_back(std::move(p)); }

  std::string FName;
  const TClassInfo* FParent;
  TClassInfo::Factory FCreate;
  std::vector<TPropInfo> FProps;
};

/// Makes `cls` findable by name for form reading. Registering the same class again is a no-op;
/// a different class of the same name (case-insensitive) raises EComponentError. The registry
/// keeps a pointer: `cls` must live as long as the program (a function-local static).
void RegisterClass(const TClassInfo& cls);
void RegisterClasses(std::initializer_list<const TClassInfo*> classes);
void UnRegisterClass(const TClassInfo& cls);
/// The registered class `name` (case-insensitive) or nullptr.
const TClassInfo* GetClass(std::string_view name);
/// Like GetClass but raises EClassNotFound ("Class TX not found").
const TClassInfo& FindClass(std::string_view name);

}  // namespace fw
