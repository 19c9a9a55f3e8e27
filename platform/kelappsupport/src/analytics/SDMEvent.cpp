#include <kelappsupport/analytics/SDMEvent.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

#include <kelcore/logging/Logging.h>

namespace kelappsupport::analytics {

SDMEvent::SDMEvent(std::string category, std::string subcategory, std::string type,
                   std::string subtype, SDMErrorHandlingPolicy policy)
    : category(std::move(category)),
      subcategory(std::move(subcategory)),
      type(std::move(type)),
      subtype(std::move(subtype)),
      policy(policy) {}

void SDMEvent::AddSDMData(const std::string& section, const std::string& key,
                          const std::string& value, SDMErrorHandlingPolicy fieldPolicy) {
    if (section.empty() || key.empty()) {
        const std::string problem = "Usage event " + subtype + ": a field needs a section and a key";
        if (fieldPolicy == SDMErrorHandlingPolicy::kThrow) {
            throw std::invalid_argument(problem);
        }
        kelcore::logging::LogWarning(problem);
        return;
    }
    const auto same = std::find_if(fields.begin(), fields.end(), [&](const Field& field) {
        return field.section == section && field.key == key;
    });
    if (same != fields.end()) {
        same->value = value;
    } else {
        fields.push_back(Field{section, key, value});
    }
}

}  // namespace kelappsupport::analytics
