#pragma once

#include "reports/ReportModel.h"

#include <QFont>

// The free family a template's Windows family is drawn with: metric-compatible
// Liberation fonts for Arial, Times New Roman and Courier New; any other name
// is left to fontconfig's match.
QString MappedFamily(const QString& templateFamily);

// The font for a device of the given resolution, sized so that it covers
// `pixelSize` template pixels (96 per inch) whatever the device.
QFont MappedFont(const ReportFont& font, double deviceDpi);
