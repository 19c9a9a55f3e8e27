// The encoder's wire format: one JSON object per line over a Unix stream socket.
//
//   client → sarvex  {"op":"submit","job":ID,"sequence":{...},"preset":PATH,"output":PATH}
//                    {"op":"cancel","job":ID}
//   sarvex → client  {"job":ID,"status":"queued"|"encoding"|"encoded"|"failed"|"cancelled",
//                     "fraction":F,"remaining":S,"message":TEXT}
//
// A sequence is {"name":N,"width":W,"height":H,"frameRate":R,"clips":[{"path":P,"in":A,
// "out":B}]}. Reports go to the connection that submitted the job; a line that cannot be read
// is answered with a failed report naming the fault (job "" when there is none). Free
// functions, safe on any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "CancelRequest.h"
#include "JobReport.h"
#include "SequenceDescription.h"
#include "SubmitRequest.h"

namespace sarvex::protocol {

using ClientMessage = std::variant<SubmitRequest, CancelRequest>;

/// One line (without its newline) for each message.
std::string EncodeLine(const ClientMessage& message);
std::string EncodeLine(const JobReport& report);

/// Reads a client's line. Throws std::invalid_argument with a readable reason when the line is
/// not a well-formed request (unknown op, missing or mistyped field, a clip whose out is not
/// after its in).
ClientMessage DecodeClientLine(std::string_view line);
/// Reads sarvex's line. Throws std::invalid_argument with a readable reason when malformed.
JobReport DecodeReportLine(std::string_view line);

/// The sequence alone, as a JSON object text (the host's project file stores this form).
std::string EncodeSequence(const SequenceDescription& sequence);
/// Throws std::invalid_argument with a readable reason when malformed.
SequenceDescription DecodeSequence(std::string_view json);

}  // namespace sarvex::protocol
