// exports_records: the entry points that read or write definition records (IFIL, IIDX, ISEG,
// DATOBJ, KEYREQ). Compiled once per packing (CTISAM_PACK 1, 2, 4) into each library variant.
#include <cstring>

#include "Shim.h"

using namespace cte;

int cte::LibraryPack() { return CTISAM_PACK; }

namespace {

std::string Str(const char* p) { return p ? std::string(p) : std::string(); }

// Reads a caller's IFIL into the engine's form; CT_EBADDEF for missing arrays or counts out of
// range (the rest is checked by Validate).
FileDef FromIfil(const IFIL* f) {
  if (!f) Throw(CT_EBADARG);
  FileDef d;
  if (!f->pfilnam || !*f->pfilnam) Throw(CT_EBADDEF);
  d.name = f->pfilnam;
  d.dfilno = f->dfilno;
  d.reclen = f->dreclen;
  d.dxtdsiz = f->dxtdsiz;
  d.dfilmod = f->dfilmod;
  d.ixtdsiz = f->ixtdsiz;
  d.ifilmod = f->ifilmod;
  d.rfstfld = Str(f->rfstfld);
  d.rlstfld = Str(f->rlstfld);
  d.tfilno = f->tfilno;
  if (f->dnumidx < 0 || (f->dnumidx > 0 && !f->ix)) Throw(CT_EBADDEF);
  for (int i = 0; i < f->dnumidx; ++i) {
    const IIDX& x = f->ix[i];
    IndexDef ix;
    ix.keylen = x.ikeylen;
    ix.keytype = x.ikeytyp;
    ix.dup = x.ikeydup;
    ix.nulkey = x.inulkey;
    ix.empchr = x.iempchr;
    ix.name = Str(x.ridxnam);
    ix.fileName = Str(x.aidxnam);
    if (x.altseq) {
      for (int b = 0; b < 256; ++b) {
        if (x.altseq[b] < 0 || x.altseq[b] > 255) Throw(CT_EBADDEF);
        ix.altseq.push_back(static_cast<uint8_t>(x.altseq[b]));
      }
    }
    if (x.inumseg <= 0 || !x.seg) Throw(CT_EBADDEF);
    if (x.inumseg > CT_MAXSEG) Throw(CT_EKEYLEN);
    for (int k = 0; k < x.inumseg; ++k)
      ix.segs.push_back(SegDef{x.seg[k].soffset, x.seg[k].slength, x.seg[k].segmode});
    d.idx.push_back(std::move(ix));
  }
  return d;
}

size_t Align8(size_t n) { return (n + 7) & ~size_t{7}; }

// Size of the IFIL image GETIFIL copies: the IFIL, its IIDX array, every ISEG array (followed
// by the index's 256 alternate sequence weights when it has them) and the names, each section
// aligned to 8 bytes.
size_t ImageSize(const FileDef& d) {
  size_t n = Align8(sizeof(IFIL)) + Align8(d.idx.size() * sizeof(IIDX));
  for (const IndexDef& ix : d.idx) {
    n += Align8(ix.segs.size() * sizeof(ISEG));
    if (!ix.altseq.empty()) n += Align8(256 * sizeof(COUNT));
    n += ix.name.size() + 1 + ix.fileName.size() + 1;
  }
  n += d.name.size() + 1 + d.rfstfld.size() + 1 + d.rlstfld.size() + 1;
  return n;
}

void WriteImage(const FileDef& d, int datno, char* buf) {
  std::memset(buf, 0, ImageSize(d));
  IFIL* f = reinterpret_cast<IFIL*>(buf);
  char* at = buf + Align8(sizeof(IFIL));
  IIDX* ix = reinterpret_cast<IIDX*>(at);
  at += Align8(d.idx.size() * sizeof(IIDX));
  auto name = [&](const std::string& s, bool nullWhenEmpty) -> pTEXT {
    char* p = at;
    std::memcpy(p, s.c_str(), s.size() + 1);
    at += s.size() + 1;
    return nullWhenEmpty && s.empty() ? nullptr : p;
  };
  for (size_t i = 0; i < d.idx.size(); ++i) {
    const IndexDef& x = d.idx[i];
    ISEG* seg = reinterpret_cast<ISEG*>(at);
    at += Align8(x.segs.size() * sizeof(ISEG));
    for (size_t k = 0; k < x.segs.size(); ++k) {
      seg[k].soffset = x.segs[k].offset;
      seg[k].slength = x.segs[k].length;
      seg[k].segmode = x.segs[k].mode;
    }
    ix[i].ikeylen = x.keylen;
    ix[i].ikeytyp = x.keytype;
    ix[i].ikeydup = x.dup;
    ix[i].inulkey = x.nulkey;
    ix[i].iempchr = x.empchr;
    ix[i].inumseg = static_cast<COUNT>(x.segs.size());
    ix[i].seg = seg;
    if (!x.altseq.empty()) {
      COUNT* alt = reinterpret_cast<COUNT*>(at);
      at += Align8(256 * sizeof(COUNT));
      for (int b = 0; b < 256; ++b) alt[b] = x.altseq[b];
      ix[i].altseq = alt;
    }
  }
  for (size_t i = 0; i < d.idx.size(); ++i) {
    ix[i].ridxnam = name(d.idx[i].name, true);
    ix[i].aidxnam = name(d.idx[i].fileName, true);
  }
  f->pfilnam = name(d.name, false);
  f->rfstfld = name(d.rfstfld, true);
  f->rlstfld = name(d.rlstfld, true);
  f->dfilno = static_cast<COUNT>(datno);
  f->dreclen = d.reclen;
  f->dxtdsiz = d.dxtdsiz;
  f->dfilmod = d.dfilmod;
  f->dnumidx = static_cast<COUNT>(d.idx.size());
  f->ixtdsiz = d.ixtdsiz;
  f->ifilmod = d.ifilmod;
  f->ix = d.idx.empty() ? nullptr : ix;
  f->tfilno = static_cast<COUNT>(datno);
}

COUNT Create(pIFIL ifil, pTEXT dataext, pTEXT indexext, pTEXT password) {
  return Run([&](Session& s) {
    FileDef d = FromIfil(ifil);
    ifil->tfilno = static_cast<COUNT>(s.CreateIfil(d, dataext, indexext, password));
  });
}

COUNT OpenSet(pIFIL ifil, pTEXT dataext, pTEXT password) {
  return Run([&](Session& s) {
    FileDef d = FromIfil(ifil);
    std::string path = d.name + (dataext ? dataext : ".dat");
    ifil->tfilno = static_cast<COUNT>(s.OpenIfil(d.dfilno, path, d.dfilmod, password));
  });
}

}  // namespace

extern "C" {

CTISAM_API COUNT CREIFILX(pIFIL ifil, pTEXT dataext, pTEXT indexext, LONG, pTEXT, pTEXT password) {
  return Create(ifil, dataext, indexext, password);
}
CTISAM_API COUNT CREIFIL(pIFIL ifil) { return Create(ifil, nullptr, nullptr, nullptr); }
CTISAM_API COUNT OPNIFILX(pIFIL ifil, pTEXT dataext, pTEXT, pTEXT password) {
  return OpenSet(ifil, dataext, password);
}
CTISAM_API COUNT OPNIFIL(pIFIL ifil) { return OpenSet(ifil, nullptr, nullptr); }
CTISAM_API COUNT CLIFIL(pIFIL ifil) {
  return Run([&](Session& s) {
    if (!ifil) Throw(CT_EBADARG);
    s.CloseSet(ifil->tfilno >= 0 ? ifil->tfilno : ifil->dfilno);
  });
}
CTISAM_API COUNT DELIFIL(pIFIL ifil) {
  return Run([&](Session& s) {
    if (!ifil) Throw(CT_EBADARG);
    s.DeleteSet(ifil->tfilno >= 0 ? ifil->tfilno : ifil->dfilno);
  });
}
CTISAM_API COUNT PUTIFIL(pIFIL ifil) {
  return Run([&](Session& s) {
    FileDef d = FromIfil(ifil);
    d.dfilno = ifil->tfilno >= 0 ? ifil->tfilno : ifil->dfilno;
    s.PutIfil(d);
  });
}
CTISAM_API COUNT PUTIFILX(pIFIL ifil, pTEXT, pTEXT, pTEXT) { return PUTIFIL(ifil); }
CTISAM_API LONG GETIFIL(COUNT datno, LONG len, pVOID buf) {
  return RunValue<LONG>([&](Session& s) {
    FileDef d = s.GetIfil(datno);
    size_t need = ImageSize(d);
    if (buf) {
      if (len < 0 || static_cast<size_t>(len) < need) Throw(CT_EBADARG);
      WriteImage(d, datno, static_cast<char*>(buf));
    }
    return static_cast<LONG>(need);
  });
}
CTISAM_API LONG GETDODA(COUNT datno, LONG len, pVOID buf, COUNT mode) {
  return RunValue<LONG>([&](Session& s) {
    std::vector<FieldDef> fields = s.GetFields(datno);
    if (mode == SCHEMA_MAP) {
      std::string image = Serialize(fields);
      if (buf) {
        if (len < 0 || static_cast<size_t>(len) < image.size()) Throw(CT_EBADARG);
        std::memcpy(buf, image.data(), image.size());
      }
      return static_cast<LONG>(image.size());
    }
    if (mode != SCHEMA_DODA) Throw(CT_EBADARG);
    size_t need = Align8(fields.size() * sizeof(DATOBJ));
    for (const FieldDef& f : fields) need += f.name.size() + 1;
    if (buf) {
      if (len < 0 || static_cast<size_t>(len) < need) Throw(CT_EBADARG);
      std::memset(buf, 0, need);
      DATOBJ* d = static_cast<DATOBJ*>(buf);
      char* names = static_cast<char*>(buf) + Align8(fields.size() * sizeof(DATOBJ));
      for (size_t i = 0; i < fields.size(); ++i) {
        std::memcpy(names, fields[i].name.c_str(), fields[i].name.size() + 1);
        d[i].fsymb = names;
        d[i].ftype = fields[i].type;
        d[i].flen = fields[i].len;
        names += fields[i].name.size() + 1;
      }
    }
    return static_cast<LONG>(need);
  });
}
CTISAM_API COUNT PUTDODA(COUNT datno, pDATOBJ doda, UCOUNT count) {
  return Run([&](Session& s) {
    if (!doda && count) Throw(CT_EBADARG);
    std::vector<FieldDef> fields;
    for (UCOUNT i = 0; i < count; ++i) {
      const char* n = doda[i].fsymb;
      if (!n || !*n || std::strlen(n) > 63) Throw(CT_EBADDEF);
      fields.push_back(FieldDef{n, doda[i].ftype, doda[i].flen});
    }
    s.PutFields(datno, fields);
  });
}

CTISAM_API COUNT TMPIIDXX(pIFIL ifil, LONG, pTEXT, pTEXT) {
  return Run([&](Session& s) {
    FileDef d = FromIfil(ifil);
    ifil->tfilno = static_cast<COUNT>(s.AddIndexes(ifil->dfilno, ifil->tfilno, d, nullptr, true));
  });
}
CTISAM_API COUNT PRMIIDX(pIFIL ifil) {
  return Run([&](Session& s) {
    if (!ifil) Throw(CT_EBADARG);
    s.MakePermanent(ifil->dfilno);
  });
}
CTISAM_API COUNT setimap(COUNT imapno, pIFIL ifil, COUNT datno, COUNT mode) {
  return Run([&](Session& s) { s.MapIndexFile(imapno, FromIfil(ifil), datno, mode); });
}
CTISAM_API COUNT RBLIFILX(pIFIL ifil, pTEXT dataext, pTEXT indexext, LONG, pTEXT, pTEXT password) {
  return Run([&](Session& s) { s.Rebuild(FromIfil(ifil), dataext, indexext, password, false); });
}
CTISAM_API COUNT RBLIFIL(pIFIL ifil) { return RBLIFILX(ifil, nullptr, nullptr, 0, nullptr, nullptr); }
CTISAM_API COUNT CMPIFILX(pIFIL ifil, pTEXT dataext, pTEXT indexext, LONG, pTEXT, pTEXT password) {
  return Run([&](Session& s) { s.Rebuild(FromIfil(ifil), dataext, indexext, password, true); });
}
CTISAM_API COUNT CMPIFIL(pIFIL ifil) { return CMPIFILX(ifil, nullptr, nullptr, 0, nullptr, nullptr); }

}  // extern "C"
