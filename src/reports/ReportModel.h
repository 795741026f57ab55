#pragma once

#include <QColor>
#include <QRectF>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

// A band template as read from its file: pages, bands and the objects on
// them. Geometry is in the template's units, pixels at 96 per inch, except the
// paper and its margins, which are in millimetres.

inline constexpr double PixelsPerMm = 96.0 / 25.4;

enum class HAlign { Left, Right, Center, Block };
enum class VAlign { Top, Center, Bottom };

// A memo's font as the template names it; the engine maps Windows families to
// metric-compatible ones when it draws.
struct ReportFont {
    QString family = QStringLiteral("Arial");
    double pixelSize = 13.0; // at 96 per inch; Font.Height -13 is 13
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool strikeOut = false;
    QColor color = Qt::black;

    bool operator==(const ReportFont&) const = default;
};

enum FrameSide { FrameLeft = 1, FrameRight = 2, FrameTop = 4, FrameBottom = 8, FrameAll = 15 };

struct ReportFrame {
    int sides = 0; // FrameSide bits
    double width = 1.0;
    QColor color = Qt::black;

    bool operator==(const ReportFrame&) const = default;
};

enum class DisplayKind { Text, Numeric, DateTime, Boolean };

struct DisplayFormat {
    DisplayKind kind = DisplayKind::Text;
    QString formatStr;

    bool operator==(const DisplayFormat&) const = default;
};

enum class StretchMode { DontStretch, ActualHeight, MaxHeight };

enum class ObjectKind {
    Memo,        // TfrxMemoView
    SysMemo,     // TfrxSysMemoView
    Line,        // TfrxLineView
    Shape,       // TfrxShapeView
    Picture,     // TfrxPictureView: drawn as a framed placeholder
    Unsupported, // anything else that is a visible object: an empty frame
};

enum class ShapeKind { Rectangle, RoundRectangle, Ellipse, Triangle, Diamond, Diagonal1, Diagonal2 };

struct ReportObject {
    ObjectKind kind = ObjectKind::Memo;
    QString className; // the element name, e.g. "TfrxBarCodeView"
    QString name;
    QRectF rect; // relative to its band, or to the page's printable area for page-level objects
    bool visible = true;

    // Memos
    QString text; // raw, with its [expressions]
    HAlign hAlign = HAlign::Left;
    VAlign vAlign = VAlign::Top;
    bool wordWrap = true;
    double gapX = 2.0;
    double gapY = 1.0;
    bool autoWidth = false;
    bool hideZeros = false;
    bool allowExpressions = true;
    StretchMode stretchMode = StretchMode::DontStretch;
    ReportFont font;
    DisplayFormat format;
    QColor fill;           // invalid: no fill (clNone)
    double rotation = 0.0; // degrees; only 0, 90, 180 and 270 are drawn turned

    // Every object that can carry a frame
    ReportFrame frame;

    // Lines and shapes
    bool diagonal = false;
    ShapeKind shape = ShapeKind::Rectangle;
};

enum class BandKind {
    ReportTitle,
    ReportSummary,
    PageHeader,
    PageFooter,
    ColumnHeader,
    ColumnFooter,
    Header,
    Footer,
    MasterData,
    DetailData,
    SubdetailData,
    GroupHeader,
    GroupFooter,
    Child,
    Overlay,
};

struct ReportBand {
    BandKind kind = BandKind::MasterData;
    QString className;
    QString name;
    double top = 0.0; // its place in the designer, which orders the bands
    double height = 0.0;
    bool visible = true;

    QString dataSet;   // data bands: the data link's name, e.g. "frxDBDataset1"
    QString condition; // group headers
    QString child;     // the name of the TfrxChild band that follows this one

    bool startNewPage = false;
    bool reprintOnNewPage = false;
    bool printIfDetailEmpty = false;
    bool printIfEmpty = false;
    bool stretched = false;
    bool allowSplit = false;
    bool keepTogether = false;
    bool printOnFirstPage = true;
    bool printOnLastPage = true;
    int rowCount = 0; // data bands: RowCount prints a band that many times without a link

    std::vector<ReportObject> objects;
};

struct ReportPageSetup {
    double paperWidth = 210.0; // millimetres, already turned for landscape
    double paperHeight = 297.0;
    double leftMargin = 10.00125;
    double rightMargin = 10.00125;
    double topMargin = 10.00125;
    double bottomMargin = 10.00125;
    bool landscape = false;
    int paperSize = 9; // 9 is A4

    bool operator==(const ReportPageSetup&) const = default;
};

struct ReportPage {
    QString name;
    ReportPageSetup setup;
    bool visible = true;
    std::vector<ReportBand> bands;         // in the order of their Top
    std::vector<ReportObject> pageObjects; // placed on the page outside any band: on every page
};

struct ReportTemplate {
    QString path;
    QString reportName; // ReportOptions.Name
    std::vector<ReportPage> pages;
    // What the template holds that the engine does not draw, each once, e.g.
    // "TfrxBarCodeView BarCode1: not supported".
    QStringList unsupported;

    ReportObject* findObject(const QString& name);
    ReportBand* findBand(const QString& name);
};
