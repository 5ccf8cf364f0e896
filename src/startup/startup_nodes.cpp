#include "startup/startup_nodes.h"

namespace corvane {

StartupList CollectStartupNode(StartupSources& sources, const StartupPlaces& places, const std::string& nodeKey) {
    if (nodeKey != kOtherPlacesKey) return CollectStartupItems(sources, places, nodeKey);
    StartupList list;
    LoadOtherPlaces(sources, places, list);
    return list;
}

std::string StartupNodeCaption(const std::string& nodeKey) {
    return nodeKey == kOtherPlacesKey ? kOtherPlacesCaption : SelectionCaption(nodeKey);
}

}  // namespace corvane
