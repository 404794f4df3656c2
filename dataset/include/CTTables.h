// Unit CTTables, the dataset layer: the table dataset with its record buffer, calculated-field
// store, blob stream and index definitions. Start with TCTTable.h.
#pragma once

#include "TCTBlobStream.h"
#include "TCTCalcFields.h"
#include "TCTIndexDefs.h"
#include "TCTRecordBuffer.h"
#include "TCTTable.h"
