// Unit CTDbIntf, the binding layer: the only place the package touches the storage library.
// Start here: LibraryLoader.h (variants and loading), CtSession.h, CtFiles.h and CtRecords.h
// (one wrapper per entry point), CtError.h and CtMessages.h (error numbers and their texts).
#pragma once

#include "TLoadAlignment.h"
#include "ECtreeException.h"
#include "CtMessages.h"
#include "CtError.h"
#include "LibraryLoader.h"
#include "CtSession.h"
#include "CtFiles.h"
#include "CtRecords.h"
