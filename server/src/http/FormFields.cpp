#include "http/FormFields.h"

#include <boost/url/encoding_opts.hpp>
#include <boost/url/params_view.hpp>
#include <boost/url/parse_query.hpp>

namespace vantroserver::http {

std::optional<FormFields::Fields> FormFields::Parse(std::string_view text) {
    Fields fields;
    if (text.empty()) {
        return fields;
    }
    // Boost.URL 1.81's query parsing reads its input up to a NUL (strlen) whatever the view's
    // length: a query cut out of a request target must be copied into a string of its own.
    const std::string terminated(text);
    if (!boost::urls::parse_query(terminated)) {
        return std::nullopt;
    }
    boost::urls::encoding_opts options;
    options.space_as_plus = true;
    const boost::urls::params_view params(terminated, options);
    for (const auto& param : params) {
        fields.emplace_back(param.key, param.value);
    }
    return fields;
}

std::optional<std::string_view> FormFields::Find(const Fields& fields, std::string_view name) {
    for (const auto& [key, value] : fields) {
        if (key == name) {
            return std::string_view{value};
        }
    }
    return std::nullopt;
}

}  // namespace vantroserver::http
