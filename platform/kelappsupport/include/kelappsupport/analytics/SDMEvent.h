// One usage event: four names that place it (category, subcategory, type, subtype) and any
// number of text fields grouped in sections. A plain value built on the caller's stack and
// handed to SDMUsageLogger::LogEvent. Any thread.
//
//   SDMEvent event("EXPORT", "Publish", "open", "vantro-location-picker",
//                  SDMErrorHandlingPolicy::kLoggerDecides);
//   event.AddSDMData("kel", "ui_path_to_access", "click:update-share-view",
//                    SDMErrorHandlingPolicy::kLoggerDecides);
#pragma once

#include <string>
#include <vector>

#include <kelappsupport/analytics/SDMErrorHandlingPolicy.h>

namespace kelappsupport::analytics {

class SDMEvent {
public:
    struct Field {
        std::string section;
        std::string key;
        std::string value;

        friend bool operator==(const Field&, const Field&) = default;
    };

    /// All four texts are UTF-8.
    SDMEvent(std::string category, std::string subcategory, std::string type,
             std::string subtype, SDMErrorHandlingPolicy policy);

    /// Adds a field; a second value for the same section and key replaces the first. An empty
    /// section or key is refused as `policy` says.
    void AddSDMData(const std::string& section, const std::string& key, const std::string& value,
                    SDMErrorHandlingPolicy policy);

    const std::string& GetCategory() const { return category; }
    const std::string& GetSubcategory() const { return subcategory; }
    const std::string& GetType() const { return type; }
    const std::string& GetSubtype() const { return subtype; }
    SDMErrorHandlingPolicy GetPolicy() const { return policy; }
    /// The fields in the order they were first added.
    const std::vector<Field>& GetFields() const { return fields; }

private:
    std::string category;
    std::string subcategory;
    std::string type;
    std::string subtype;
    SDMErrorHandlingPolicy policy;
    std::vector<Field> fields;
};

}  // namespace kelappsupport::analytics
