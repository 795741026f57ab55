#include "reports/BandTree.h"

namespace {

int DataLevel(BandKind kind)
{
    switch (kind) {
    case BandKind::MasterData: return 0;
    case BandKind::DetailData: return 1;
    case BandKind::SubdetailData: return 2;
    default: return -1;
    }
}

// Where a band that prints once per report or page goes; null for the others.
const ReportBand** PageRole(BandTree& tree, BandKind kind)
{
    switch (kind) {
    case BandKind::ReportTitle: return &tree.title;
    case BandKind::ReportSummary: return &tree.summary;
    case BandKind::PageHeader: return &tree.pageHeader;
    case BandKind::PageFooter: return &tree.pageFooter;
    case BandKind::ColumnHeader: return &tree.columnHeader;
    case BandKind::ColumnFooter: return &tree.columnFooter;
    default: return nullptr;
    }
}

// Links the data bands, headers and footers of one page by their order.
class SectionBuilder {
public:
    explicit SectionBuilder(BandTree& tree) : tree_(tree) {}

    void add(const ReportBand& band)
    {
        switch (band.kind) {
        case BandKind::Header: header_ = &band; break;
        case BandKind::GroupHeader: groupHeaders_.push_back(&band); break;
        case BandKind::GroupFooter: closeGroup(band); break;
        case BandKind::Footer: closeSection(band); break;
        default:
            if (DataLevel(band.kind) >= 0)
                openSection(band);
        }
    }

private:
    void openSection(const ReportBand& band)
    {
        auto section = std::make_unique<DataSection>();
        section->band = &band;
        section->header = std::exchange(header_, nullptr);
        section->groupHeaders = std::exchange(groupHeaders_, {});
        const int level = DataLevel(band.kind);
        DataSection* parent = nullptr;
        for (auto it = opened_.rbegin(); it != opened_.rend() && !parent; ++it)
            if (DataLevel((*it)->band->kind) == level - 1)
                parent = *it;
        opened_.push_back(section.get());
        (parent ? parent->details : tree_.sections).push_back(std::move(section));
    }

    void closeGroup(const ReportBand& band)
    {
        for (auto it = opened_.rbegin(); it != opened_.rend(); ++it)
            if ((*it)->groupFooters.size() < (*it)->groupHeaders.size()) {
                (*it)->groupFooters.push_back(&band);
                return;
            }
    }

    void closeSection(const ReportBand& band)
    {
        for (auto it = opened_.rbegin(); it != opened_.rend(); ++it)
            if (!(*it)->footer) {
                (*it)->footer = &band;
                return;
            }
    }

    BandTree& tree_;
    const ReportBand* header_ = nullptr;
    std::vector<const ReportBand*> groupHeaders_;
    std::vector<DataSection*> opened_;
};

} // namespace

BandTree BandTree::build(const ReportPage& page)
{
    BandTree tree;
    SectionBuilder sections(tree);
    for (const ReportBand& band : page.bands) {
        if (band.kind == BandKind::Overlay) {
            tree.overlays.push_back(&band);
        } else if (band.kind == BandKind::Child) {
            tree.children_.push_back(&band);
        } else if (const ReportBand** role = PageRole(tree, band.kind)) {
            if (!*role)
                *role = &band;
        } else {
            sections.add(band);
        }
    }
    return tree;
}

const ReportBand* BandTree::childOf(const ReportBand& band) const
{
    if (band.child.isEmpty())
        return nullptr;
    for (const ReportBand* child : children_)
        if (child->name.compare(band.child, Qt::CaseInsensitive) == 0 && child != &band)
            return child;
    return nullptr;
}
