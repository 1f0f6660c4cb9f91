#pragma once
// The program's pictures for buttons and windows, drawn as SVG so that they stay sharp at
// every screen scale.
#include <QIcon>
#include <QStyle>

namespace platform {

// The toolbar picture for a button key ("New", "Print", "Bridge", ...): the program's own
// drawing when it has one, else the style's standard picture `fallback` (none for SP_CustomBase).
QIcon toolIcon(const QString& key, QStyle::StandardPixmap fallback = QStyle::SP_CustomBase);

// The program's icon: an arch bridge with a quality mark.
QIcon applicationIcon();

} // namespace platform
