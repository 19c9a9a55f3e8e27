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
    if (!boost::urls::parse_query(text)) {
        return std::nullopt;
    }
    boost::urls::encoding_opts options;
    options.space_as_plus = true;
    const boost::urls::params_view params(text, options);
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
