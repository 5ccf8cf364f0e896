#pragma once
// The tree of the startup pane: the design's seven nodes and, beside them,
// Other Places, each giving its rows and its frame caption.
#include <string>

#include "startup/other_place_table.h"
#include "startup/startup_items.h"

namespace corvane {

// The rows of a tree node: the other places for kOtherPlacesKey, else the
// node's sources and stores.
StartupList CollectStartupNode(StartupSources& sources, const StartupPlaces& places, const std::string& nodeKey);
std::string StartupNodeCaption(const std::string& nodeKey);

}  // namespace corvane
