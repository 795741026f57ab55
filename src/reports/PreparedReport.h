#pragma once

#include "reports/ReportModel.h"

#include <QSizeF>
#include <QStringList>

#include <optional>
#include <vector>

// How a prepared item looks; items of one template object share one style.
struct PreparedStyle {
    ReportFont font;
    HAlign hAlign = HAlign::Left;
    VAlign vAlign = VAlign::Top;
    bool wordWrap = true;
    double gapX = 2.0;
    double gapY = 1.0;
    double rotation = 0.0;
    ReportFrame frame;
    QColor fill;
    ShapeKind shape = ShapeKind::Rectangle;

    bool operator==(const PreparedStyle&) const = default;
};

enum class ItemKind : quint8 {
    Text,  // a memo: fill, text, frame
    Line,  // from the rect's top left to its bottom right
    Shape, // the style's shape
    Frame, // an object the engine does not draw: its frame only
};

// One positioned drawing item of a prepared page, in pixels at 96 per inch
// from the paper's top left corner.
struct PreparedItem {
    ItemKind kind = ItemKind::Text;
    int style = 0;
    QRectF rect;
    QString text;
};

struct PreparedPage {
    QSizeF paperMm{210.0, 297.0};
    bool landscape = false;
    std::vector<PreparedItem> items;
};

// Where a text was found: a page and the item on it.
struct TextHit {
    int page = 0;
    int item = -1;
    bool operator==(const TextHit&) const = default;
};

// The pages a report prepared from a template and its data: what the preview
// shows, the printer prints and the PDF holds.
struct PreparedReport {
    QString name;
    std::vector<PreparedStyle> styles;
    std::vector<PreparedPage> pages;
    QStringList problems; // unsupported objects and expressions, unknown names: each once

    int pageCount() const { return static_cast<int>(pages.size()); }
    QStringList pageTexts(int page) const; // the page's texts in item order, for searching and checks

    // The first text item after `after` (in page and item order, wrapping round
    // to the start) that contains `text`; none when no item does.
    std::optional<TextHit> find(const QString& text, TextHit after = {0, -1},
                                Qt::CaseSensitivity cs = Qt::CaseInsensitive) const;
};
