#pragma once

namespace brimlet {

/// Installs the accessible interfaces of the menu's containers: the menu is a group, the agreement
/// a document. Further calls do nothing.
void describeMenuToScreenReaders();

} // namespace brimlet
