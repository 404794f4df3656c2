// The dataset unit of the framework layer: datasets, fields, definitions, data links and data
// sources in one include.
#pragma once

#include "DataSetTypes.h"
#include "TBCDField.h"
#include "TBinaryField.h"
#include "TBlobField.h"
#include "TBlobStream.h"
#include "TBooleanField.h"
#include "TDataLink.h"
#include "TDataSet.h"
#include "TDataSource.h"
#include "TDateTimeField.h"
#include "TField.h"
#include "TFieldDefs.h"
#include "TFields.h"
#include "TFloatField.h"
#include "TIndexDefs.h"
#include "TNumericField.h"
#include "TStringField.h"
