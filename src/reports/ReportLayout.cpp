#include "reports/ReportLayout.h"

#include "core/tables/Table.h"
#include "reports/BandTree.h"
#include "reports/MemoText.h"
#include "reports/ReportFonts.h"

#include <QFontMetricsF>
#include <QHash>
#include <QImage>
#include <QRegularExpression>

#include <algorithm>
#include <unordered_map>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

struct CompiledObject {
    const ReportObject* object = nullptr;
    ItemKind kind = ItemKind::Text;
    int style = 0;
    MemoText text;
};

struct CompiledBand {
    std::vector<CompiledObject> objects;
    std::vector<Aggregate*> resets; // the aggregates its memos show start again after it printed
    std::unique_ptr<ExpressionNode> condition;
    bool usesPage = false;
};

ItemKind KindOf(ObjectKind kind)
{
    switch (kind) {
    case ObjectKind::Memo:
    case ObjectKind::SysMemo: return ItemKind::Text;
    case ObjectKind::Line: return ItemKind::Line;
    case ObjectKind::Shape: return ItemKind::Shape;
    case ObjectKind::Picture:
    case ObjectKind::Unsupported: return ItemKind::Frame;
    }
    return ItemKind::Frame;
}

PreparedStyle StyleOf(const ReportObject& object)
{
    PreparedStyle style;
    style.font = object.font;
    style.hAlign = object.hAlign;
    style.vAlign = object.vAlign;
    style.wordWrap = object.wordWrap;
    style.gapX = object.gapX;
    style.gapY = object.gapY;
    style.rotation = object.rotation;
    style.frame = object.frame;
    style.fill = object.fill;
    style.shape = object.shape;
    if (object.kind == ObjectKind::Line && style.frame.sides == 0)
        style.frame.sides = FrameAll; // a line is drawn whatever its frame says
    if ((object.kind == ObjectKind::Picture || object.kind == ObjectKind::Unsupported) && style.frame.sides == 0)
        style.frame.sides = FrameAll;
    return style;
}

// A line runs from its rect's top left to its bottom right; one that is not
// diagonal runs along its longer side.
QRectF LineRect(const ReportObject& line)
{
    QRectF rect = line.rect;
    if (!line.diagonal) {
        if (std::abs(rect.width()) >= std::abs(rect.height()))
            rect.setHeight(0.0);
        else
            rect.setWidth(0.0);
    }
    return rect;
}

QString WithoutBrackets(const QString& condition)
{
    const QString trimmed = condition.trimmed();
    if (trimmed.startsWith(u'[') && ClosingBracket(trimmed, 0) == trimmed.size() - 1)
        return trimmed.mid(1, trimmed.size() - 2);
    return trimmed;
}

// A [TotalPages#] shown as it is gets the count once the pages are done; an
// expression that computes with it needs the count before, from a first pass.
bool ComputesWithTotalPages(const QString& text)
{
    static const QRegularExpression shown(uR"(\[\s*<?TotalPages#?>?\s*(#[^\]]*)?\])"_s,
                                          QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression named(uR"(\bTotalPages\b)"_s, QRegularExpression::CaseInsensitiveOption);
    return text.contains(named) && QString(text).remove(shown).contains(named);
}

enum class BandRole { Content, Fixed };

class Layout final : public ExpressionScope {
public:
    Layout(const ReportTemplate& report, const std::vector<DataLinkBinding>& links, const QDateTime& printedAt,
           int totalPages)
        : report_(report)
    {
        system_.totalPages = totalPages;
        for (const DataLinkBinding& binding : links)
            cursors_.push_back(std::make_unique<LinkCursor>(LinkCursor{binding.name, binding.table, -1}));
        system_.date = printedAt.date();
        system_.time = printedAt.time();
        measuringDevice_.setDotsPerMeterX(3780);
        measuringDevice_.setDotsPerMeterY(3780);
        result_.name = report.reportName;
        for (const QString& problem : report.unsupported)
            Layout::report(problem);
    }

    PreparedReport run()
    {
        collectDataBandNames();
        for (const ReportPage& page : report_.pages)
            if (page.visible)
                runPage(page);
        if (result_.pages.empty())
            result_.pages.push_back(PreparedPage{});
        fillTotalPages();
        return std::move(result_);
    }

    bool computesWithTotalPages() const { return computesWithTotalPages_; }

    const LinkCursor* link(const QString& name) override { return cursorNamed(name); }

    Aggregate* aggregate(AggregateKind kind, std::unique_ptr<ExpressionNode> argument, const QString& band) override
    {
        const QString key = band.toLower();
        if (!dataBandNames_.contains(key))
            return nullptr;
        aggregates_.push_back(std::make_unique<Aggregate>(kind, std::move(argument), band));
        Aggregate* created = aggregates_.back().get();
        accumulate_[key].push_back(created);
        if (compiling_)
            compiling_->resets.push_back(created);
        return created;
    }

    void report(const QString& problem) override
    {
        if (!result_.problems.contains(problem))
            result_.problems.append(problem);
    }

private:
    LinkCursor* cursorNamed(const QString& name) const
    {
        for (const auto& cursor : cursors_)
            if (cursor->name.compare(name, Qt::CaseInsensitive) == 0)
                return cursor.get();
        return nullptr;
    }

    // ---- compiling ---------------------------------------------------------

    void collectDataBandNames()
    {
        for (const ReportPage& page : report_.pages)
            for (const ReportBand& band : page.bands)
                if (band.kind == BandKind::MasterData || band.kind == BandKind::DetailData ||
                    band.kind == BandKind::SubdetailData)
                    dataBandNames_.insert(band.name.toLower());
    }

    void compileBand(const ReportBand& band)
    {
        CompiledBand& compiled = bands_[&band];
        compiling_ = &compiled;
        compiled.objects = compileObjects(band.objects);
        if (band.kind == BandKind::GroupHeader)
            compiled.condition = ParseExpression(WithoutBrackets(band.condition), *this);
        compiling_ = nullptr;
    }

    std::vector<CompiledObject> compileObjects(const std::vector<ReportObject>& objects)
    {
        std::vector<CompiledObject> compiled;
        for (const ReportObject& object : objects) {
            if (!object.visible)
                continue;
            CompiledObject item{&object, KindOf(object.kind), styleIndex(object), {}};
            if (item.kind == ItemKind::Text) {
                item.text = MemoText(object.text, object, *this);
                computesWithTotalPages_ =
                    computesWithTotalPages_ || (object.allowExpressions && ComputesWithTotalPages(object.text));
                if (compiling_)
                    compiling_->usesPage = compiling_->usesPage || item.text.usesPage();
            }
            compiled.push_back(std::move(item));
        }
        return compiled;
    }

    int styleIndex(const ReportObject& object)
    {
        const PreparedStyle style = StyleOf(object);
        for (std::size_t i = 0; i < result_.styles.size(); ++i)
            if (result_.styles[i] == style)
                return static_cast<int>(i);
        result_.styles.push_back(style);
        return static_cast<int>(result_.styles.size() - 1);
    }

    // ---- one template page -----------------------------------------------

    void runPage(const ReportPage& page)
    {
        page_ = &page;
        tree_ = BandTree::build(page);
        for (const ReportBand& band : page.bands)
            compileBand(band);
        pageObjects_ = compileObjects(page.pageObjects);
        firstPageOfTemplate_ = static_cast<int>(result_.pages.size());
        startPage(true);
        for (const auto& section : tree_.sections)
            runSection(*section);
        printBand(tree_.summary);
        finishPage(true);
    }

    double px(double mm) const { return mm * PixelsPerMm; }
    double left() const { return px(page_->setup.leftMargin); }
    double top() const { return px(page_->setup.topMargin); }
    double paperBottom() const { return px(page_->setup.paperHeight - page_->setup.bottomMargin); }
    double bandsBottom() const { return paperBottom() - heightOf(tree_.pageFooter) - heightOf(tree_.columnFooter); }
    static double heightOf(const ReportBand* band) { return band && band->visible ? band->height : 0.0; }
    bool firstPageOfTemplate() const { return static_cast<int>(result_.pages.size()) == firstPageOfTemplate_ + 1; }

    void startPage(bool titleFirst)
    {
        PreparedPage page;
        page.paperMm = QSizeF(page_->setup.paperWidth, page_->setup.paperHeight);
        page.landscape = page_->setup.landscape;
        result_.pages.push_back(std::move(page));
        system_.page = static_cast<int>(result_.pages.size());
        cursorY_ = top();
        pageHasContent_ = false;
        breakingPage_ = true;
        for (const ReportBand* overlay : tree_.overlays)
            printBandAt(overlay, top());
        place(pageObjects_, texts(pageObjects_), {}, top());
        if (titleFirst)
            printBand(tree_.title);
        if (tree_.pageHeader && (tree_.pageHeader->printOnFirstPage || !firstPageOfTemplate()))
            printBand(tree_.pageHeader, BandRole::Fixed);
        printBand(tree_.columnHeader, BandRole::Fixed);
        for (const ReportBand* header : reprinted_)
            printBand(header, BandRole::Fixed);
        breakingPage_ = false;
    }

    void finishPage(bool last)
    {
        breakingPage_ = true;
        printBand(tree_.columnFooter, BandRole::Fixed);
        const ReportBand* footer = tree_.pageFooter;
        if (footer && (footer->printOnLastPage || !last) && (footer->printOnFirstPage || !firstPageOfTemplate()))
            printBandAt(footer, paperBottom() - footer->height);
        breakingPage_ = false;
    }

    void newPage()
    {
        // The bands of a new page's top and bottom have children of their own.
        std::vector<const ReportBand*> chain = std::exchange(childChain_, {});
        finishPage(false);
        startPage(false);
        childChain_ = std::move(chain);
    }

    // ---- bands ---------------------------------------------------------------

    void runSection(const DataSection& section)
    {
        LinkCursor* cursor = cursorNamed(section.band->dataSet);
        if (!section.band->dataSet.isEmpty() && !cursor)
            report(u"Nieznane źródło danych: %1"_s.arg(section.band->dataSet));
        const int rows = cursor ? (cursor->table ? cursor->table->recordCount() : 0)
                                : (section.band->dataSet.isEmpty() ? section.band->rowCount : 0);
        if (rows == 0 && !section.band->printIfEmpty && !(section.header && section.header->printIfEmpty))
            return;
        openHeader(section.header);
        std::vector<ReportValue> groupValues(section.groupHeaders.size());
        const auto accumulating = accumulate_.constFind(section.band->name.toLower());
        const std::vector<Aggregate*> none;
        const std::vector<Aggregate*>& aggregates = accumulating == accumulate_.cend() ? none : *accumulating;
        for (int row = 0; row < rows; ++row) {
            if (cursor)
                cursor->row = row;
            followGroups(section, groupValues, cursor, row);
            system_.line = row + 1;
            printBand(section.band);
            for (Aggregate* aggregate : aggregates)
                aggregate->add(system_);
            for (const auto& detail : section.details)
                runSection(*detail);
        }
        if (rows > 0)
            closeGroups(section, 0);
        closeHeader(section.header);
        printBand(section.footer);
    }

    // Closes the groups from the first whose condition changed inwards, while
    // the link is still at the group's last row, and opens them again.
    void followGroups(const DataSection& section, std::vector<ReportValue>& values, LinkCursor* cursor, int row)
    {
        std::size_t changed = values.size();
        for (std::size_t level = 0; level < values.size(); ++level) {
            ReportValue value = bands_.at(section.groupHeaders[level]).condition->evaluate(system_);
            if (changed == values.size() && (row == 0 || value != values[level]))
                changed = level;
            values[level] = std::move(value);
        }
        if (changed == values.size())
            return;
        if (row > 0) {
            if (cursor)
                cursor->row = row - 1;
            closeGroups(section, changed);
            if (cursor)
                cursor->row = row;
        }
        for (std::size_t level = changed; level < values.size(); ++level)
            openHeader(section.groupHeaders[level]);
    }

    void closeGroups(const DataSection& section, std::size_t fromLevel)
    {
        for (std::size_t level = section.groupHeaders.size(); level-- > fromLevel;) {
            closeHeader(section.groupHeaders[level]);
            const std::size_t footer = section.groupHeaders.size() - 1 - level;
            if (footer < section.groupFooters.size())
                printBand(section.groupFooters[footer]);
        }
    }

    // A header printed again on every new page is no content of its own: a
    // band after it that starts a new page does not leave it there alone.
    void openHeader(const ReportBand* header)
    {
        printBand(header, header && header->reprintOnNewPage ? BandRole::Fixed : BandRole::Content);
        if (header && header->reprintOnNewPage)
            reprinted_.push_back(header);
    }

    void closeHeader(const ReportBand* header)
    {
        if (header && header->reprintOnNewPage && !reprinted_.empty() && reprinted_.back() == header)
            reprinted_.pop_back();
    }

    void printBand(const ReportBand* band, BandRole role = BandRole::Content)
    {
        if (!band || !band->visible)
            return;
        const CompiledBand& compiled = bands_.at(band);
        if (band->startNewPage && pageHasContent_ && !breakingPage_)
            newPage();
        std::vector<QString> values = texts(compiled.objects);
        std::vector<double> heights;
        double height = measure(*band, compiled, values, heights);
        if (!breakingPage_ && pageHasContent_ && cursorY_ + height > bandsBottom()) {
            newPage();
            if (compiled.usesPage) {
                values = texts(compiled.objects);
                height = measure(*band, compiled, values, heights);
            }
        }
        place(compiled.objects, values, heights, cursorY_);
        cursorY_ += height;
        if (role == BandRole::Content)
            pageHasContent_ = true;
        for (Aggregate* aggregate : compiled.resets)
            aggregate->reset();
        // Children that name each other in a ring print once each, not forever.
        const ReportBand* child = tree_.childOf(*band);
        if (child && std::find(childChain_.begin(), childChain_.end(), child) == childChain_.end()) {
            childChain_.push_back(band);
            printBand(child, role);
            childChain_.pop_back();
        }
    }

    // Overlays and page footers keep their place and do not move the cursor.
    void printBandAt(const ReportBand* band, double y)
    {
        if (!band || !band->visible)
            return;
        const CompiledBand& compiled = bands_.at(band);
        const std::vector<QString> values = texts(compiled.objects);
        std::vector<double> heights;
        measure(*band, compiled, values, heights);
        place(compiled.objects, values, heights, y);
        for (Aggregate* aggregate : compiled.resets)
            aggregate->reset();
    }

    std::vector<QString> texts(const std::vector<CompiledObject>& objects) const
    {
        std::vector<QString> values(objects.size());
        for (std::size_t i = 0; i < objects.size(); ++i)
            if (objects[i].kind == ItemKind::Text)
                values[i] = objects[i].text.evaluate(system_);
        return values;
    }

    // The band's height with its stretching memos grown to their texts; the
    // heights of the objects that changed are left in `heights`.
    double measure(const ReportBand& band, const CompiledBand& compiled, const std::vector<QString>& values,
                   std::vector<double>& heights)
    {
        heights.clear();
        if (!band.stretched)
            return band.height;
        double height = band.height;
        heights.resize(compiled.objects.size(), -1.0);
        for (std::size_t i = 0; i < compiled.objects.size(); ++i) {
            const CompiledObject& item = compiled.objects[i];
            if (item.kind != ItemKind::Text || item.object->stretchMode == StretchMode::DontStretch)
                continue;
            const QRectF& rect = item.object->rect;
            heights[i] = std::max(rect.height(), textHeight(item.style, values[i], rect.width()));
            height = std::max(height, rect.top() + heights[i]);
        }
        for (std::size_t i = 0; i < compiled.objects.size(); ++i)
            if (compiled.objects[i].object->stretchMode == StretchMode::MaxHeight)
                heights[i] = height - compiled.objects[i].object->rect.top();
        return height;
    }

    double textHeight(int styleIndex, const QString& text, double width)
    {
        const PreparedStyle& style = result_.styles[static_cast<std::size_t>(styleIndex)];
        auto& metrics = metrics_[styleIndex];
        if (!metrics)
            metrics = std::make_unique<QFontMetricsF>(MappedFont(style.font, measuringDevice_.logicalDpiY()),
                                                      &measuringDevice_);
        const int flags = style.wordWrap ? Qt::TextWordWrap : 0;
        const QRectF box(0.0, 0.0, std::max(1.0, width - 2.0 * style.gapX), 1e6);
        return metrics->boundingRect(box, flags, text).height() + 2.0 * style.gapY;
    }

    void place(const std::vector<CompiledObject>& objects, const std::vector<QString>& values,
               const std::vector<double>& heights, double y)
    {
        PreparedPage& page = result_.pages.back();
        for (std::size_t i = 0; i < objects.size(); ++i) {
            const CompiledObject& item = objects[i];
            const ReportObject& object = *item.object;
            QRectF rect = item.kind == ItemKind::Line ? LineRect(object) : object.rect;
            if (i < heights.size() && heights[i] >= 0.0)
                rect.setHeight(heights[i]);
            rect.translate(left(), y);
            if (item.kind == ItemKind::Text && values[i].isEmpty() && object.frame.sides == 0 && !object.fill.isValid())
                continue;
            if (item.kind == ItemKind::Text && values[i].contains(TotalPagesMarker))
                totalPageItems_.emplace_back(result_.pages.size() - 1, page.items.size());
            page.items.push_back(PreparedItem{item.kind, item.style, rect, values[i]});
        }
    }

    void fillTotalPages()
    {
        const QString total = QString::number(result_.pages.size());
        for (const auto& [page, item] : totalPageItems_)
            result_.pages[page].items[item].text.replace(TotalPagesMarker, total);
    }

    const ReportTemplate& report_;
    std::vector<std::unique_ptr<LinkCursor>> cursors_;
    std::vector<std::unique_ptr<Aggregate>> aggregates_;
    QHash<QString, std::vector<Aggregate*>> accumulate_; // by data band name, lower case
    QSet<QString> dataBandNames_;
    std::unordered_map<const ReportBand*, CompiledBand> bands_;
    CompiledBand* compiling_ = nullptr;
    bool computesWithTotalPages_ = false;
    std::unordered_map<int, std::unique_ptr<QFontMetricsF>> metrics_;
    QImage measuringDevice_{1, 1, QImage::Format_RGB32};

    PreparedReport result_;
    SystemValues system_;
    const ReportPage* page_ = nullptr;
    BandTree tree_;
    std::vector<CompiledObject> pageObjects_;
    int firstPageOfTemplate_ = 0;
    double cursorY_ = 0.0;
    bool pageHasContent_ = false;
    bool breakingPage_ = false; // printing the fixed top or bottom of a page: no further page break
    std::vector<const ReportBand*> reprinted_;
    std::vector<const ReportBand*> childChain_; // the bands whose children are printing
    std::vector<std::pair<std::size_t, std::size_t>> totalPageItems_;
};

} // namespace

PreparedReport PrepareReport(const ReportTemplate& report, const std::vector<DataLinkBinding>& links,
                             const QDateTime& printedAt)
{
    Layout layout(report, links, printedAt, 0);
    PreparedReport prepared = layout.run();
    if (!layout.computesWithTotalPages())
        return prepared;
    Layout counted(report, links, printedAt, prepared.pageCount());
    return counted.run();
}
