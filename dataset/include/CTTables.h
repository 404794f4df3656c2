// Unit CTTables, the dataset layer: the table dataset with its record buffer, calculated-field
// store, blob stream, index definitions and filter conditions, and the batch copy. Start with
// TCTTable.h.
#pragma once

#include "BatchCopyTypes.h"
#include "ECTreeCopyCreate.h"
#include "TCTBatchCopy.h"
#include "TCTBlobStream.h"
#include "TCTCalcFields.h"
#include "TCTFilter.h"
#include "TCTIndexDefs.h"
#include "TCTRecordBuffer.h"
#include "TCTTable.h"
