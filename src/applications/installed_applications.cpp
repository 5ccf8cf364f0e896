#include "applications/installed_applications.h"

// Placeholder bodies while the walk and the decoder are built.
namespace corvane {

std::vector<Row> CollectApplications(ApplicationSources&, const std::string&) { return {}; }
std::string sizeText(uint8_t, uint8_t, uint8_t, uint8_t) { return {}; }
std::string frequencyText(uint8_t) { return {}; }
std::string lastUsedText(uint8_t, uint8_t, uint8_t, uint8_t, bool) { return {}; }

}  // namespace corvane
