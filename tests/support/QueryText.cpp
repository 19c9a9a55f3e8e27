#include "support/QueryText.h"

#include <algorithm>

namespace testsupport {

std::string PercentDecode(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size()) {
            out += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else if (text[i] == '+') {
            out += ' ';
        } else {
            out += text[i];
        }
    }
    return out;
}

std::vector<std::pair<std::string, std::string>> QueryPairs(const std::string& url) {
    std::vector<std::pair<std::string, std::string>> pairs;
    const auto question = url.find('?');
    if (question == std::string::npos) {
        return pairs;
    }
    std::string query = url.substr(question + 1);
    query = query.substr(0, query.find('#'));
    std::size_t start = 0;
    while (start < query.size()) {
        const auto end = std::min(query.find('&', start), query.size());
        const std::string pair = query.substr(start, end - start);
        const auto equals = pair.find('=');
        if (!pair.empty()) {
            pairs.emplace_back(
                PercentDecode(pair.substr(0, equals)),
                equals == std::string::npos ? "" : PercentDecode(pair.substr(equals + 1)));
        }
        start = end + 1;
    }
    return pairs;
}

}  // namespace testsupport
