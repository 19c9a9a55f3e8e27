#include <sarvex/protocol/Wire.h>

#include <array>
#include <cmath>
#include <stdexcept>
#include <utility>

#include <boost/json.hpp>

namespace sarvex::protocol {
namespace {

namespace json = boost::json;

constexpr std::array<std::pair<JobStatus, std::string_view>, 5> kStatusNames{{
    {JobStatus::Queued, "queued"},
    {JobStatus::Encoding, "encoding"},
    {JobStatus::Encoded, "encoded"},
    {JobStatus::Failed, "failed"},
    {JobStatus::Cancelled, "cancelled"},
}};

[[noreturn]] void Malformed(std::string_view what) {
    throw std::invalid_argument(std::string(what));
}

const json::object& AsObject(const json::value& value, std::string_view what) {
    if (!value.is_object())
        Malformed(std::string(what) + " is not a JSON object");
    return value.get_object();
}

const json::value& Field(const json::object& object, std::string_view key) {
    const auto* found = object.if_contains(key);
    if (!found)
        Malformed("missing \"" + std::string(key) + "\"");
    return *found;
}

std::string StringField(const json::object& object, std::string_view key) {
    const auto& value = Field(object, key);
    if (!value.is_string())
        Malformed("\"" + std::string(key) + "\" is not a string");
    return std::string(value.get_string());
}

double NumberField(const json::object& object, std::string_view key) {
    const auto& value = Field(object, key);
    if (!value.is_number())
        Malformed("\"" + std::string(key) + "\" is not a number");
    const double number = value.to_number<double>();
    if (!std::isfinite(number))
        Malformed("\"" + std::string(key) + "\" is not finite");
    return number;
}

double OptionalNumberField(const json::object& object, std::string_view key, double fallback) {
    return object.contains(key) ? NumberField(object, key) : fallback;
}

json::object ParseObject(std::string_view text) {
    boost::system::error_code error;
    json::value value = json::parse(text, error);
    if (error)
        Malformed("not JSON: " + error.message());
    if (!value.is_object())
        Malformed("not a JSON object");
    return std::move(value.get_object());
}

json::object SequenceObject(const SequenceDescription& sequence) {
    json::array clips;
    for (const auto& clip : sequence.clips) {
        clips.push_back(json::object{{"path", clip.path}, {"in", clip.in}, {"out", clip.out}});
    }
    return json::object{{"name", sequence.name},
                        {"width", sequence.width},
                        {"height", sequence.height},
                        {"frameRate", sequence.frameRate},
                        {"clips", std::move(clips)}};
}

int DimensionField(const json::object& object, std::string_view key, int fallback) {
    if (!object.contains(key))
        return fallback;
    const double number = NumberField(object, key);
    if (number < 2 || number > 16384 || number != std::floor(number) ||
        static_cast<int>(number) % 2 != 0) {
        Malformed("\"" + std::string(key) + "\" must be an even whole number from 2 to 16384");
    }
    return static_cast<int>(number);
}

SequenceDescription SequenceFromObject(const json::object& object) {
    SequenceDescription sequence;
    if (object.contains("name"))
        sequence.name = StringField(object, "name");
    sequence.width = DimensionField(object, "width", sequence.width);
    sequence.height = DimensionField(object, "height", sequence.height);
    sequence.frameRate = OptionalNumberField(object, "frameRate", sequence.frameRate);
    if (sequence.frameRate <= 0 || sequence.frameRate > 240) {
        Malformed("\"frameRate\" must be above 0 and at most 240");
    }
    const auto& clips = Field(object, "clips");
    if (!clips.is_array())
        Malformed("\"clips\" is not an array");
    if (clips.get_array().empty())
        Malformed("the sequence has no clips");
    for (const auto& item : clips.get_array()) {
        const auto& clipObject = AsObject(item, "a clip");
        Clip clip{StringField(clipObject, "path"), NumberField(clipObject, "in"),
                  NumberField(clipObject, "out")};
        if (clip.path.empty())
            Malformed("a clip has an empty path");
        if (clip.in < 0)
            Malformed("a clip starts before 0 s: " + clip.path);
        if (clip.out <= clip.in)
            Malformed("a clip's out is not after its in: " + clip.path);
        sequence.clips.push_back(std::move(clip));
    }
    return sequence;
}

}  // namespace

double SequenceDescription::Duration() const {
    double total = 0.0;
    for (const auto& clip : clips)
        total += clip.out - clip.in;
    return total;
}

std::string_view JobStatusName(JobStatus status) {
    for (const auto& [value, name] : kStatusNames) {
        if (value == status)
            return name;
    }
    return "unknown";
}

std::optional<JobStatus> JobStatusFromName(std::string_view name) {
    for (const auto& [value, text] : kStatusNames) {
        if (text == name)
            return value;
    }
    return std::nullopt;
}

std::string EncodeLine(const ClientMessage& message) {
    json::object object;
    if (const auto* submit = std::get_if<SubmitRequest>(&message)) {
        object = {{"op", "submit"},
                  {"job", submit->jobID},
                  {"sequence", SequenceObject(submit->sequence)},
                  {"preset", submit->presetPath},
                  {"output", submit->outputPath}};
    } else {
        object = {{"op", "cancel"}, {"job", std::get<CancelRequest>(message).jobID}};
    }
    return json::serialize(object);
}

std::string EncodeLine(const JobReport& report) {
    return json::serialize(json::object{{"job", report.jobID},
                                        {"status", JobStatusName(report.status)},
                                        {"fraction", report.fraction},
                                        {"remaining", report.remainingSeconds},
                                        {"message", report.message}});
}

ClientMessage DecodeClientLine(std::string_view line) {
    const auto object = ParseObject(line);
    const auto op = StringField(object, "op");
    auto jobID = StringField(object, "job");
    if (jobID.empty())
        Malformed("\"job\" is empty");
    if (op == "cancel")
        return CancelRequest{std::move(jobID)};
    if (op != "submit")
        Malformed("unknown op \"" + op + "\"");
    SubmitRequest submit{std::move(jobID),
                         SequenceFromObject(AsObject(Field(object, "sequence"), "\"sequence\"")),
                         StringField(object, "preset"), StringField(object, "output")};
    if (submit.outputPath.empty())
        Malformed("\"output\" is empty");
    return submit;
}

JobReport DecodeReportLine(std::string_view line) {
    const auto object = ParseObject(line);
    const auto statusName = StringField(object, "status");
    const auto status = JobStatusFromName(statusName);
    if (!status)
        Malformed("unknown status \"" + statusName + "\"");
    JobReport report;
    report.jobID = StringField(object, "job");
    report.status = *status;
    report.fraction = OptionalNumberField(object, "fraction", 0.0);
    report.remainingSeconds = OptionalNumberField(object, "remaining", -1.0);
    if (object.contains("message"))
        report.message = StringField(object, "message");
    return report;
}

std::string EncodeSequence(const SequenceDescription& sequence) {
    return json::serialize(SequenceObject(sequence));
}

SequenceDescription DecodeSequence(std::string_view json) {
    return SequenceFromObject(ParseObject(json));
}

}  // namespace sarvex::protocol
