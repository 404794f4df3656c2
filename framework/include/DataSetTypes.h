// Enumerations, sets and small types shared by the dataset classes (framework layer).
// The ordinals of every enumeration here are fixed: package code and form files rely on them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "TSet.h"

namespace fw {

class TComponent;

/// State of a dataset. Ordinals 0..12.
enum TDataSetState : uint8_t {
  dsInactive,
  dsBrowse,
  dsEdit,
  dsInsert,
  dsSetKey,
  dsCalcFields,
  dsFilter,
  dsNewValue,
  dsOldValue,
  dsCurValue,
  dsBlockRead,
  dsInternalCalc,
  dsOpening
};
using TDataSetStates = TSet<TDataSetState>;
/// States in which the active record is being edited.
inline constexpr TDataSetStates dsEditModes{dsEdit, dsInsert, dsSetKey};
/// States in which field values may be written.
inline constexpr TDataSetStates dsWriteModes{dsEdit,   dsInsert,   dsSetKey,      dsCalcFields,
                                             dsFilter, dsNewValue, dsInternalCalc};

/// Notifications a dataset sends to its data sources and their links.
enum TDataEvent : uint8_t {
  deFieldChange,
  deRecordChange,
  deDataSetChange,
  deDataSetScroll,
  deLayoutChange,
  deUpdateRecord,
  deUpdateState,
  deCheckBrowseMode,
  dePropertyChange,
  deFieldListChange,
  deFocusControl,
  deParentScroll,
  deConnectChange,
  deReconcileError,
  deDisabledStateChange
};

/// Direction of a record fetch and its outcome (the record-buffer protocol).
enum TGetMode : uint8_t { gmCurrent, gmNext, gmPrior };
enum TGetResult : uint8_t { grOK, grBOF, grEOF, grError };

/// Options of Resync.
enum TResyncModeFlag : uint8_t { rmExact, rmCenter };
using TResyncMode = TSet<TResyncModeFlag>;

/// What a record buffer holds: a stored record, a before-first or after-last placeholder, or a
/// new record not yet posted.
enum TBookmarkFlag : uint8_t { bfCurrent, bfBOF, bfEOF, bfInserted };

/// Answer of an error event (OnPostError, OnEditError, OnDeleteError).
enum TDataAction : uint8_t { daFail, daAbort, daRetry };

enum TLocateOption : uint8_t { loCaseInsensitive, loPartialKey };
using TLocateOptions = TSet<TLocateOption>;
enum TFilterOption : uint8_t { foCaseInsensitive, foNoPartialCompare };
using TFilterOptions = TSet<TFilterOption>;

enum TBlobStreamMode : uint8_t { bmRead, bmWrite, bmReadWrite };
enum TUpdateStatus : uint8_t { usUnmodified, usModified, usInserted, usDeleted };

/// Data types of fields and field definitions. Ordinals 0..51 are fixed.
enum TFieldType : uint8_t {
  ftUnknown, ftString, ftSmallint, ftInteger, ftWord, ftBoolean,
  ftFloat, ftCurrency, ftBCD, ftDate, ftTime, ftDateTime,
  ftBytes, ftVarBytes, ftAutoInc, ftBlob, ftMemo, ftGraphic,
  ftFmtMemo, ftParadoxOle, ftDBaseOle, ftTypedBinary, ftCursor, ftFixedChar,
  ftWideString, ftLargeint, ftADT, ftArray, ftReference, ftDataSet,
  ftOraBlob, ftOraClob, ftVariant, ftInterface, ftIDispatch, ftGuid,
  ftTimeStamp, ftFMTBcd, ftFixedWideChar, ftWideMemo, ftOraTimeStamp, ftOraInterval,
  ftLongWord, ftShortint, ftByte, ftExtended, ftConnection, ftParams,
  ftStream, ftTimeStampOffset, ftObject, ftSingle
};
using TFieldTypes = TSet<TFieldType>;
/// The types whose data lives outside the record buffer and is reached through blob streams.
inline constexpr TFieldTypes ftBlobTypes{ftBlob,        ftMemo,    ftGraphic, ftFmtMemo, ftParadoxOle,
                                         ftDBaseOle,    ftTypedBinary, ftOraBlob, ftOraClob, ftWideMemo};

/// Where a field's value comes from.
enum TFieldKind : uint8_t { fkData, fkCalculated, fkLookup, fkInternalCalc };
using TFieldKinds = TSet<TFieldKind>;

/// Attributes of a field definition.
enum TFieldAttribute : uint8_t { faHiddenCol, faReadonly, faRequired, faLink, faUnNamed, faFixed };
using TFieldAttributes = TSet<TFieldAttribute>;

/// Options of an index definition.
enum TIndexOption : uint8_t {
  ixPrimary, ixUnique, ixDescending, ixCaseInsensitive, ixExpression, ixNonMaintained
};
using TIndexOptions = TSet<TIndexOption>;

/// Horizontal alignment of a field's text in controls.
enum TAlignment : uint8_t { taLeftJustify, taRightJustify, taCenter };

/// One record buffer of a dataset's window. The memory comes from the descendant's
/// AllocRecordBuffer and is opaque to the base class; descendants may point it at an object of
/// their own and cast it back.
using TRecordBuffer = char*;

/// A bookmark: an owned copy of BookmarkSize bytes naming one record. Empty means "nil".
using TBookmark = std::vector<std::byte>;

/// The next name of a ";"-separated field list, trimmed of blanks. `Pos` is 1-based (start
/// with 1) and is advanced past the name and its separator; the list is done when `Pos`
/// exceeds its length.
std::string ExtractFieldName(const std::string& Fields, int& Pos);

/// Names of the TFieldType members by ordinal ("ftUnknown" .. "ftSingle").
const std::vector<std::string>& FieldTypeNames();

/// Raises EDatabaseError with `message`, prefixed with "Name: " when `component` has a name.
[[noreturn]] void DatabaseError(const std::string& message, const TComponent* component = nullptr);

}  // namespace fw
