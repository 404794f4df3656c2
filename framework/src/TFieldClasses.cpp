// Field class table and native/plain value conversion (framework layer).
#include "TFieldClasses.h"

#include <cstring>

#include "DateTime.h"
#include "DataSetMessages.h"
#include "TBCDField.h"
#include "TBcd.h"
#include "TBlobField.h"
#include "TBinaryField.h"
#include "TBooleanField.h"
#include "TDateTimeField.h"
#include "TFloatField.h"
#include "TNumericField.h"
#include "TStringField.h"

namespace fw {

namespace {

template <class T>
TField* Make(TComponent* Owner) {
  return new T(Owner);
}

}  // namespace

TFieldClass DefaultFieldClass(TFieldType FieldType) {
  switch (FieldType) {
    case ftString:
    case ftFixedChar:
      return &Make<TStringField>;
    case ftSmallint:
      return &Make<TSmallintField>;
    case ftInteger:
      return &Make<TIntegerField>;
    case ftWord:
      return &Make<TWordField>;
    case ftAutoInc:
      return &Make<TAutoIncField>;
    case ftLargeint:
      return &Make<TLargeintField>;
    case ftBoolean:
      return &Make<TBooleanField>;
    case ftFloat:
      return &Make<TFloatField>;
    case ftCurrency:
      return &Make<TCurrencyField>;
    case ftDate:
      return &Make<TDateField>;
    case ftTime:
      return &Make<TTimeField>;
    case ftDateTime:
      return &Make<TDateTimeField>;
    case ftBytes:
      return &Make<TBytesField>;
    case ftVarBytes:
      return &Make<TVarBytesField>;
    case ftBCD:
      return &Make<TBCDField>;
    case ftFMTBcd:
      return &Make<TFMTBCDField>;
    case ftMemo:
      return &Make<TMemoField>;
    case ftGraphic:
      return &Make<TGraphicField>;
    case ftBlob:
    case ftFmtMemo:
    case ftParadoxOle:
    case ftDBaseOle:
    case ftTypedBinary:
    case ftOraBlob:
    case ftOraClob:
    case ftWideMemo:
      return &Make<TBlobField>;
    default:
      return nullptr;
  }
}

void ConvertFieldData(const TField* Field, const void* Source, void* Dest, bool ToNative) {
  const TFieldType type = Field->DataType();
  if (type == ftDate || type == ftTime || type == ftDateTime) {
    if (ToNative) {
      TDateTime value;
      std::memcpy(&value, Source, sizeof value);
      const TTimeStamp ts = DateTimeToTimeStamp(value);
      TDateTimeRec rec{};
      if (type == ftDate)
        rec.Date = ts.Date;
      else if (type == ftTime)
        rec.Time = ts.Time;
      else
        rec.DateTime = TimeStampToMSecs(ts);
      std::memcpy(Dest, &rec, static_cast<std::size_t>(Field->DataSize()));
    } else {
      TDateTimeRec rec{};
      std::memcpy(&rec, Source, static_cast<std::size_t>(Field->DataSize()));
      TDateTime value;
      if (type == ftDate)
        value = TimeStampToDateTime(TTimeStamp{0, rec.Date});
      else if (type == ftTime)
        value = TimeStampToDateTime(TTimeStamp{rec.Time, DateDelta});
      else
        value = TimeStampToDateTime(MSecsToTimeStamp(rec.DateTime));
      std::memcpy(Dest, &value, sizeof value);
    }
    return;
  }
  if (type == ftBCD) {
    if (ToNative) {
      Currency value;
      std::memcpy(&value, Source, sizeof value);
      TBcd bcd;
      if (!CurrToBCD(value, bcd, 32, Field->Size())) DatabaseError(FmtMsg(SBcdOverflow, {Field->DisplayName()}));
      std::memcpy(Dest, &bcd, sizeof bcd);
    } else {
      TBcd bcd;
      std::memcpy(&bcd, Source, sizeof bcd);
      Currency value = 0;
      if (!BCDToCurr(bcd, value)) DatabaseError(FmtMsg(SBcdOverflow, {Field->DisplayName()}));
      std::memcpy(Dest, &value, sizeof value);
    }
    return;
  }
  std::memcpy(Dest, Source, static_cast<std::size_t>(Field->DataSize()));
}

void SetFieldPrecision(TField* Field, int Precision) {
  if (Precision <= 0) return;
  if (auto* floatField = dynamic_cast<TFloatField*>(Field)) floatField->SetPrecision(Precision);
  if (auto* bcdField = dynamic_cast<TBCDField*>(Field)) bcdField->SetPrecision(Precision);
  if (auto* fmtField = dynamic_cast<TFMTBCDField*>(Field)) fmtField->SetPrecision(Precision);
}

}  // namespace fw
