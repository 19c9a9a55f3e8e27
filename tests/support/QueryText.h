// Reading a URL's query as a browser or a server would: the name=value pairs in order, with
// percent escapes and '+' decoded. For fixtures that play the browser or check a redirect.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace testsupport {

/// `text` with %XX escapes and '+' decoded; a '%' too near the end is kept as it stands.
std::string PercentDecode(const std::string& text);

/// The decoded pairs of `url`'s query (between '?' and '#'), in order; a name without '='
/// has the empty value, empty pairs are skipped. None when there is no query.
std::vector<std::pair<std::string, std::string>> QueryPairs(const std::string& url);

}  // namespace testsupport
