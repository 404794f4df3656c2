// Field class table and native/plain value conversion shared by the dataset classes
// (framework layer, private).
#pragma once

#include "DataSetTypes.h"
#include "TField.h"

namespace fw {

/// The framework's default class for `FieldType`; null for types without class.
TFieldClass DefaultFieldClass(TFieldType FieldType);

/// The conversion behind TDataSet::DataConvert: dates between TDateTimeRec and TDateTime, BCD
/// between TBcd and Currency, everything else copied (DataSize bytes).
void ConvertFieldData(const TField* Field, const void* Source, void* Dest, bool ToNative);

/// Gives float and BCD fields the precision of their definition (ignored for other classes and
/// for `Precision` <= 0).
void SetFieldPrecision(TField* Field, int Precision);

}  // namespace fw
