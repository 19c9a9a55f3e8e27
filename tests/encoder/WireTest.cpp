#include <sarvex/protocol/Wire.h>

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace {

using namespace sarvex::protocol;

SequenceDescription SampleSequence() {
    SequenceDescription sequence;
    sequence.name = "Cut \"3\" / ünïcode";
    sequence.width = 1920;
    sequence.height = 1080;
    sequence.frameRate = 29.97;
    sequence.clips = {{"/media/a.mov", 0.5, 2.25}, {"/media/b b.mp4", 10.0, 12.0}};
    return sequence;
}

// The reason a malformed line is refused with.
std::string RefusalOfClientLine(const std::string& line) {
    try {
        DecodeClientLine(line);
    } catch (const std::invalid_argument& fault) {
        return fault.what();
    }
    return "(accepted)";
}

std::string RefusalOfReportLine(const std::string& line) {
    try {
        DecodeReportLine(line);
    } catch (const std::invalid_argument& fault) {
        return fault.what();
    }
    return "(accepted)";
}

std::string SubmitWithSequence(const std::string& sequence) {
    return R"({"op":"submit","job":"j","preset":"p.json","output":"/o.mp4","sequence":)" +
           sequence + "}";
}

TEST(Wire, ASubmitRequestSurvivesTheRoundTrip) {
    const ClientMessage message =
        SubmitRequest{"job-1", SampleSequence(), "/p/h264.json", "/o.mp4"};
    EXPECT_EQ(DecodeClientLine(EncodeLine(message)), message);
}

TEST(Wire, ACancelRequestSurvivesTheRoundTrip) {
    const ClientMessage message = CancelRequest{"job-1"};
    EXPECT_EQ(DecodeClientLine(EncodeLine(message)), message);
}

TEST(Wire, EveryReportSurvivesTheRoundTrip) {
    for (const auto status : {JobStatus::Queued, JobStatus::Encoding, JobStatus::Encoded,
                              JobStatus::Failed, JobStatus::Cancelled}) {
        const JobReport report{"job-7", status, 0.375, 12.5, "line one\nline \"two\""};
        EXPECT_EQ(DecodeReportLine(EncodeLine(report)), report) << JobStatusName(status);
    }
}

TEST(Wire, ASequenceSurvivesTheRoundTripAndSumsItsSpans) {
    const auto sequence = SampleSequence();
    EXPECT_EQ(DecodeSequence(EncodeSequence(sequence)), sequence);
    EXPECT_DOUBLE_EQ(sequence.Duration(), 1.75 + 2.0);
}

TEST(Wire, ALineIsOneLine) {
    const auto line = EncodeLine(JobReport{"j", JobStatus::Failed, 0, -1, "a\nb"});
    EXPECT_EQ(line.find('\n'), std::string::npos);
}

TEST(Wire, MalformedClientLinesSayWhatIsWrong) {
    EXPECT_NE(RefusalOfClientLine("not json").find("not JSON"), std::string::npos);
    EXPECT_NE(RefusalOfClientLine("[1,2]").find("not a JSON object"), std::string::npos);
    EXPECT_NE(RefusalOfClientLine(R"({"job":"j"})").find("missing \"op\""), std::string::npos);
    EXPECT_NE(RefusalOfClientLine(R"({"op":"cancel"})").find("missing \"job\""), std::string::npos);
    EXPECT_NE(RefusalOfClientLine(R"({"op":"cancel","job":""})").find("\"job\" is empty"),
              std::string::npos);
    EXPECT_NE(RefusalOfClientLine(R"({"op":"cancel","job":5})").find("\"job\" is not a string"),
              std::string::npos);
    EXPECT_NE(RefusalOfClientLine(R"({"op":"pause","job":"j"})").find("unknown op \"pause\""),
              std::string::npos);
    EXPECT_NE(RefusalOfClientLine(R"({"op":"submit","job":"j"})").find("missing \"sequence\""),
              std::string::npos);
}

TEST(Wire, MalformedSequencesSayWhatIsWrong) {
    const auto clip = R"({"path":"/a.mp4","in":0,"out":1})";
    EXPECT_NE(RefusalOfClientLine(SubmitWithSequence(R"({"clips":[]})")).find("no clips"),
              std::string::npos);
    EXPECT_NE(RefusalOfClientLine(SubmitWithSequence(R"({"clips":{}})")).find("not an array"),
              std::string::npos);
    EXPECT_NE(RefusalOfClientLine(SubmitWithSequence(R"({"clips":[{"path":"/a","in":2,"out":1}]})"))
                  .find("out is not after its in"),
              std::string::npos);
    EXPECT_NE(
        RefusalOfClientLine(SubmitWithSequence(R"({"clips":[{"path":"/a","in":-1,"out":1}]})"))
            .find("before 0"),
        std::string::npos);
    EXPECT_NE(RefusalOfClientLine(SubmitWithSequence(R"({"clips":[{"path":"","in":0,"out":1}]})"))
                  .find("empty path"),
              std::string::npos);
    EXPECT_NE(RefusalOfClientLine(
                  SubmitWithSequence(std::string(R"({"width":641,"clips":[)") + clip + "]}"))
                  .find("\"width\""),
              std::string::npos);
    EXPECT_NE(RefusalOfClientLine(
                  SubmitWithSequence(std::string(R"({"frameRate":0,"clips":[)") + clip + "]}"))
                  .find("\"frameRate\""),
              std::string::npos);
    EXPECT_NE(
        RefusalOfClientLine(SubmitWithSequence(R"({"clips":[{"path":"/a","in":"0","out":1}]})"))
            .find("\"in\" is not a number"),
        std::string::npos);
}

TEST(Wire, MalformedReportLinesSayWhatIsWrong) {
    EXPECT_NE(RefusalOfReportLine(R"({"job":"j","status":"melting"})").find("unknown status"),
              std::string::npos);
    EXPECT_NE(RefusalOfReportLine(R"({"status":"queued"})").find("missing \"job\""),
              std::string::npos);
    EXPECT_NE(RefusalOfReportLine(R"({"job":"j","status":"encoding","fraction":"half"})")
                  .find("\"fraction\" is not a number"),
              std::string::npos);
    EXPECT_NE(RefusalOfReportLine("{").find("not JSON"), std::string::npos);
}

}  // namespace
