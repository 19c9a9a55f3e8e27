// Captures what the process writes to stderr (file descriptor 2) while it lives, for tests of
// the toolkit's headless defaults, which print there. Stderr is pointed at an anonymous
// temporary file and put back by Text() or the destructor. The test's thread; nothing else may
// redirect stderr meanwhile.
//
//   StderrCapture capture;
//   StderrToastManager().DisplayToastMessage(...);
//   EXPECT_EQ(capture.Text(), "Upload failed.\n");
#pragma once

#include <unistd.h>

#include <cstdio>
#include <string>

namespace keluitest {

class StderrCapture {
public:
    StderrCapture() : file(std::tmpfile()) {
        std::fflush(stderr);
        saved = ::dup(STDERR_FILENO);
        if (file != nullptr && saved >= 0) {
            ::dup2(::fileno(file), STDERR_FILENO);
        }
    }
    ~StderrCapture() {
        Restore();
        if (file != nullptr) {
            std::fclose(file);
        }
    }
    StderrCapture(const StderrCapture&) = delete;
    StderrCapture& operator=(const StderrCapture&) = delete;

    /// Puts stderr back and answers everything written to it meanwhile.
    std::string Text() {
        Restore();
        std::string text;
        if (file == nullptr) {
            return text;
        }
        std::rewind(file);
        char buffer[4096];
        for (std::size_t read; (read = std::fread(buffer, 1, sizeof buffer, file)) > 0;) {
            text.append(buffer, read);
        }
        return text;
    }

private:
    void Restore() {
        if (saved >= 0) {
            std::fflush(stderr);
            ::dup2(saved, STDERR_FILENO);
            ::close(saved);
            saved = -1;
        }
    }

    std::FILE* file = nullptr;
    int saved = -1;
};

}  // namespace keluitest
