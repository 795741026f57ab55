#pragma once

#include "reports/PreparedReport.h"

class QPainter;
class QPaintDevice;

// Paints one prepared page. The painter's coordinates are the page's template
// pixels (96 per inch) from the paper's top left; `deviceDpi` is the
// resolution of the device behind the painter, which sizes the fonts. The
// preview, the printout and the PDF are all painted by this function.
// `highlighted` marks one item of the page, as a find shows what it found.
void PaintPage(QPainter& painter, const PreparedReport& report, int page, double deviceDpi, int highlighted = -1);

// Paints a page onto a device that is exactly the paper (a PDF or printer
// page): scales the template pixels to the device and paints.
void PaintPageOnDevice(QPainter& painter, const QPaintDevice& device, const PreparedReport& report, int page);
