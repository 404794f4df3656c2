// The batch copy's modes, progress stages and event types, shared with TCTTable (dataset, unit CTTables).
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <string>

namespace fw {
class TComponent;
class TField;
}  // namespace fw

namespace CTTables {

/// What TCTBatchCopy::Execute does with each source record:
/// - cmCopy: the destination is created anew with the source's fields (and, from a TCTTable, its
///   indexes), then every record is added;
/// - cmAppend: every record is added to the existing destination;
/// - cmUpdate: the destination record with the same unique key is rewritten; records without a
///   match are passed over;
/// - cmAppendUpdate: as cmUpdate, and records without a match are added;
/// - cmDelete: the destination record with the same unique key is deleted.
enum TCTCopyMode : uint8_t { cmCopy, cmAppend, cmUpdate, cmAppendUpdate, cmDelete };

/// Where a batch is: psStarting once before the first record, psRunning after each record
/// handled, psEnding once at the end, also when the batch ends with an error.
enum TCTProgressStage : uint8_t { psStarting, psRunning, psEnding };

/// OnProgress(Sender, Stage, RecNo, Msg): RecNo counts the records handled (1, 2, ... with
/// psRunning; 0 with the other stages). Msg says what starts or how it ended (empty with
/// psRunning).
using TCTProgressEvent =
    std::function<void(fw::TComponent* Sender, TCTProgressStage Stage, int32_t RecNo, const std::string& Msg)>;

/// OnCopyError(Sender, SrcField, TrgField, E, Continue): a field (both fields given) or a record
/// (both null) failed with E. Continue arrives true, which lets the error end the batch; a handler
/// that sets it false skips the field (the record is written without it) or the record.
using TCTCopyErrorEvent = std::function<void(fw::TComponent* Sender, fw::TField* SrcField, fw::TField* TrgField,
                                             const std::exception& E, bool& Continue)>;

}  // namespace CTTables
