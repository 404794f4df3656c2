// TPersistent: base of every class with published properties and Assign (framework layer).
#pragma once

#include <string>

namespace fw {

class TClassInfo;

/// Base of the classes the form reader and writer handle and of everything that can be copied
/// with `Assign`. Each descendant that publishes properties declares
///
///     static const fw::TClassInfo& StaticClass();                  // its property table
///     const fw::TClassInfo& ClassType() const override { return StaticClass(); }
///
/// (see TClassInfo.h for how the table is built).
class TPersistent {
 public:
  TPersistent() = default;
  TPersistent(const TPersistent&) = delete;
  TPersistent& operator=(const TPersistent&) = delete;
  virtual ~TPersistent() = default;

  /// The property table of TPersistent itself (no properties, not creatable).
  static const TClassInfo& StaticClass();
  /// The property table of the object's most-derived published class.
  virtual const TClassInfo& ClassType() const;
  /// Name of the most-derived published class (`ClassType().ClassName()`).
  const std::string& ClassName() const;
  /// True when the object's class is `cls` or one of its descendants.
  bool InheritsFrom(const TClassInfo& cls) const;

  /// Copies `source` into this object. The base asks `source.AssignTo(*this)`, whose base raises
  /// `EConvertError` ("Cannot assign a TX to a TY"); descendants override either side.
  virtual void Assign(const TPersistent& source);
  /// A name for messages and the designer: the class name here; components give their Name,
  /// collection items "Collection[i]".
  virtual std::string GetNamePath() const;

 protected:
  // ---- descendants may override ----
  /// Copies this object into `dest`; the base raises EConvertError.
  virtual void AssignTo(TPersistent& dest) const;
};

}  // namespace fw
