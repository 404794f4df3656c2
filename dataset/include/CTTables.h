// Unit CTTables, the dataset layer: the table dataset with its record buffer, calculated-field
// store and index definitions. Start with TCTTable.h.
#pragma once

#include "TCTCalcFields.h"
#include "TCTIndexDefs.h"
#include "TCTRecordBuffer.h"
#include "TCTTable.h"
