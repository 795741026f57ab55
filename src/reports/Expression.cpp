#include "reports/Expression.h"

#include "core/tables/Table.h"
#include "reports/ReportFormat.h"

#include <QRegularExpression>

#include <cmath>
#include <limits>
#include <vector>

using namespace Qt::StringLiterals;

Aggregate::Aggregate(AggregateKind kind, std::unique_ptr<ExpressionNode> argument, QString dataBand)
    : kind_(kind), argument_(std::move(argument)), dataBand_(std::move(dataBand))
{}

void Aggregate::add(const SystemValues& system)
{
    const double value = argument_ ? AsNumber(argument_->evaluate(system)) : 0.0;
    min_ = count_ == 0 ? value : std::min(min_, value);
    max_ = count_ == 0 ? value : std::max(max_, value);
    sum_ += value;
    ++count_;
}

void Aggregate::reset()
{
    sum_ = min_ = max_ = 0.0;
    count_ = 0;
}

ReportValue Aggregate::value() const
{
    switch (kind_) {
    case AggregateKind::Sum: return sum_;
    case AggregateKind::Min: return min_;
    case AggregateKind::Max: return max_;
    case AggregateKind::Avg: return count_ == 0 ? 0.0 : sum_ / static_cast<double>(count_);
    case AggregateKind::Count: return static_cast<double>(count_);
    }
    return {};
}

namespace {

// ---- values ----------------------------------------------------------------

bool IsNumeric(const ReportValue& value)
{
    return std::holds_alternative<double>(value) || std::holds_alternative<bool>(value);
}

bool Truth(const ReportValue& value)
{
    if (const auto* flag = std::get_if<bool>(&value))
        return *flag;
    if (const auto* number = std::get_if<double>(&value))
        return *number != 0.0;
    if (const auto* text = std::get_if<QString>(&value))
        return !text->isEmpty() && text->compare(u"False"_s, Qt::CaseInsensitive) != 0;
    return !IsEmpty(value);
}

int Compare(const ReportValue& left, const ReportValue& right)
{
    if (IsNumeric(left) && IsNumeric(right)) {
        const double a = AsNumber(left), b = AsNumber(right);
        return a < b ? -1 : (a > b ? 1 : 0);
    }
    const auto* leftDate = std::get_if<QDate>(&left);
    const auto* rightDate = std::get_if<QDate>(&right);
    if (leftDate && rightDate)
        return *leftDate < *rightDate ? -1 : (*leftDate > *rightDate ? 1 : 0);
    return DefaultText(left).compare(DefaultText(right));
}

// ---- nodes -----------------------------------------------------------------

class ConstantNode : public ExpressionNode {
public:
    explicit ConstantNode(ReportValue value) : value_(std::move(value)) {}
    ReportValue evaluate(const SystemValues&) const override { return value_; }

private:
    ReportValue value_;
};

class FieldNode : public ExpressionNode {
public:
    FieldNode(const LinkCursor& cursor, int field) : cursor_(cursor), field_(field) {}
    ReportValue evaluate(const SystemValues&) const override
    {
        // Outside its data band a link stays at its first row, so a title can
        // show the producer's fields.
        const Table* table = cursor_.table;
        const int row = std::max(cursor_.row, 0);
        if (!table || row >= table->recordCount())
            return {};
        return FromField(table->at(row, field_));
    }

private:
    const LinkCursor& cursor_;
    int field_;
};

enum class SystemName { Page, TotalPages, Date, Time, Line };

class SystemNode : public ExpressionNode {
public:
    explicit SystemNode(SystemName name) : name_(name) {}
    ReportValue evaluate(const SystemValues& system) const override
    {
        switch (name_) {
        case SystemName::Page: return static_cast<double>(system.page);
        case SystemName::TotalPages:
            return system.totalPages > 0 ? ReportValue(static_cast<double>(system.totalPages))
                                         : ReportValue(QString(TotalPagesMarker));
        case SystemName::Date: return system.date;
        case SystemName::Time: return system.time;
        case SystemName::Line: return static_cast<double>(system.line);
        }
        return {};
    }

private:
    SystemName name_;
};

class AggregateNode : public ExpressionNode {
public:
    explicit AggregateNode(const Aggregate& aggregate) : aggregate_(aggregate) {}
    ReportValue evaluate(const SystemValues&) const override { return aggregate_.value(); }

private:
    const Aggregate& aggregate_;
};

using Node = std::unique_ptr<ExpressionNode>;

class NegateNode : public ExpressionNode {
public:
    explicit NegateNode(Node operand) : operand_(std::move(operand)) {}
    ReportValue evaluate(const SystemValues& system) const override { return -AsNumber(operand_->evaluate(system)); }

private:
    Node operand_;
};

class NotNode : public ExpressionNode {
public:
    explicit NotNode(Node operand) : operand_(std::move(operand)) {}
    ReportValue evaluate(const SystemValues& system) const override { return !Truth(operand_->evaluate(system)); }

private:
    Node operand_;
};

class BinaryNode : public ExpressionNode {
public:
    BinaryNode(QString op, Node left, Node right) : op_(std::move(op)), left_(std::move(left)), right_(std::move(right))
    {}

    ReportValue evaluate(const SystemValues& system) const override
    {
        const ReportValue a = left_->evaluate(system);
        if (op_ == u"and")
            return Truth(a) && Truth(right_->evaluate(system));
        if (op_ == u"or")
            return Truth(a) || Truth(right_->evaluate(system));
        const ReportValue b = right_->evaluate(system);
        if (op_.size() == 1 && u"+-*/"_s.contains(op_))
            return arithmetic(a, b);
        return comparison(Compare(a, b));
    }

private:
    ReportValue arithmetic(const ReportValue& a, const ReportValue& b) const
    {
        const bool numbers = (IsNumeric(a) || IsEmpty(a)) && (IsNumeric(b) || IsEmpty(b));
        if (op_ == u"+" && !numbers)
            return DefaultText(a) + DefaultText(b);
        const double x = AsNumber(a), y = AsNumber(b);
        switch (op_.front().unicode()) {
        case '+': return x + y;
        case '-': return x - y;
        case '*': return x * y;
        default: return y == 0.0 ? ReportValue() : ReportValue(x / y);
        }
    }

    bool comparison(int order) const
    {
        if (op_ == u"=")
            return order == 0;
        if (op_ == u"<>")
            return order != 0;
        if (op_ == u"<")
            return order < 0;
        if (op_ == u">")
            return order > 0;
        if (op_ == u"<=")
            return order <= 0;
        return order >= 0;
    }

    QString op_;
    Node left_;
    Node right_;
};

class IifNode : public ExpressionNode {
public:
    IifNode(Node condition, Node whenTrue, Node whenFalse)
        : condition_(std::move(condition)), whenTrue_(std::move(whenTrue)), whenFalse_(std::move(whenFalse))
    {}
    ReportValue evaluate(const SystemValues& system) const override
    {
        return Truth(condition_->evaluate(system)) ? whenTrue_->evaluate(system) : whenFalse_->evaluate(system);
    }

private:
    Node condition_;
    Node whenTrue_;
    Node whenFalse_;
};

// ---- tokens ----------------------------------------------------------------

enum class TokenKind { End, Number, String, Name, QuotedName, Variable, Symbol };

struct Token {
    TokenKind kind = TokenKind::End;
    QString text;
};

// A "<…>" is a variable reference when what it encloses is a name, with or
// without a link; otherwise "<" is the comparison.
bool LooksLikeVariable(const QString& inner)
{
    static const QRegularExpression name(uR"(^\s*("[^"]*"|[A-Za-z_]\w*#?)(\s*\.\s*("[^"]*"|[A-Za-z_]\w*))?\s*$)"_s);
    return name.match(inner).hasMatch();
}

std::vector<Token> Tokenize(const QString& source)
{
    std::vector<Token> tokens;
    qsizetype i = 0;
    const qsizetype n = source.size();
    while (i < n) {
        const QChar c = source[i];
        if (c.isSpace()) {
            ++i;
        } else if (c.isDigit()) {
            qsizetype j = i;
            while (j < n && (source[j].isDigit() || source[j] == u'.'))
                ++j;
            tokens.push_back({TokenKind::Number, source.mid(i, j - i)});
            i = j;
        } else if (c == u'\'' || c == u'"') {
            QString text;
            qsizetype j = i + 1;
            while (j < n) {
                if (source[j] == c && j + 1 < n && source[j + 1] == c && c == u'\'') {
                    text += c;
                    j += 2;
                } else if (source[j] == c) {
                    break;
                } else {
                    text += source[j++];
                }
            }
            tokens.push_back({c == u'\'' ? TokenKind::String : TokenKind::QuotedName, text});
            i = j + 1;
        } else if (c.isLetter() || c == u'_') {
            qsizetype j = i;
            while (j < n && (source[j].isLetterOrNumber() || source[j] == u'_'))
                ++j;
            if (j < n && source[j] == u'#')
                ++j;
            tokens.push_back({TokenKind::Name, source.mid(i, j - i)});
            i = j;
        } else if (c == u'<') {
            const qsizetype close = source.indexOf(u'>', i + 1);
            const QString inner = close > i ? source.mid(i + 1, close - i - 1) : QString();
            if (close > i && LooksLikeVariable(inner)) {
                tokens.push_back({TokenKind::Variable, inner});
                i = close + 1;
            } else {
                const bool twoChars = i + 1 < n && (source[i + 1] == u'>' || source[i + 1] == u'=');
                tokens.push_back({TokenKind::Symbol, source.mid(i, twoChars ? 2 : 1)});
                i += twoChars ? 2 : 1;
            }
        } else if (c == u'>' && i + 1 < n && source[i + 1] == u'=') {
            tokens.push_back({TokenKind::Symbol, u">="_s});
            i += 2;
        } else {
            tokens.push_back({TokenKind::Symbol, QString(c)});
            ++i;
        }
    }
    tokens.push_back({TokenKind::End, {}});
    return tokens;
}

// ---- parser ----------------------------------------------------------------

class Parser {
public:
    Parser(const QString& source, ExpressionScope& scope) : source_(source), scope_(scope), tokens_(Tokenize(source)) {}

    Node parse()
    {
        Node node = logical();
        if (peek().kind != TokenKind::End)
            return fail(u"Nieobsługiwane wyrażenie: [%1]"_s.arg(source_));
        return node;
    }

private:
    const Token& peek() const { return tokens_[position_]; }
    Token take() { return tokens_[position_ < tokens_.size() - 1 ? position_++ : position_]; }
    bool takeSymbol(QStringView symbol)
    {
        if (peek().kind == TokenKind::Symbol && peek().text == symbol) {
            ++position_;
            return true;
        }
        return false;
    }
    bool takeWord(QStringView word)
    {
        if (peek().kind == TokenKind::Name && peek().text.compare(word, Qt::CaseInsensitive) == 0) {
            ++position_;
            return true;
        }
        return false;
    }

    Node fail(const QString& problem)
    {
        if (!failed_)
            scope_.report(problem);
        failed_ = true;
        position_ = tokens_.size() - 1;
        return std::make_unique<ConstantNode>(ReportValue());
    }

    Node logical()
    {
        Node node = comparison();
        while (true) {
            const QString op = takeWord(u"and") ? u"and"_s : (takeWord(u"or") ? u"or"_s : QString());
            if (op.isEmpty())
                return node;
            node = std::make_unique<BinaryNode>(op, std::move(node), comparison());
        }
    }

    Node comparison()
    {
        Node node = additive();
        for (const QString& op : {u"<>"_s, u"<="_s, u">="_s, u"="_s, u"<"_s, u">"_s})
            if (takeSymbol(op))
                return std::make_unique<BinaryNode>(op, std::move(node), additive());
        return node;
    }

    Node additive()
    {
        Node node = term();
        while (peek().kind == TokenKind::Symbol && (peek().text == u"+" || peek().text == u"-")) {
            const QString op = take().text;
            node = std::make_unique<BinaryNode>(op, std::move(node), term());
        }
        return node;
    }

    Node term()
    {
        Node node = unary();
        while (peek().kind == TokenKind::Symbol && (peek().text == u"*" || peek().text == u"/")) {
            const QString op = take().text;
            node = std::make_unique<BinaryNode>(op, std::move(node), unary());
        }
        return node;
    }

    Node unary()
    {
        if (takeSymbol(u"-"))
            return std::make_unique<NegateNode>(unary());
        if (takeSymbol(u"+"))
            return unary();
        if (takeWord(u"not"))
            return std::make_unique<NotNode>(unary());
        return primary();
    }

    Node primary()
    {
        const Token token = take();
        switch (token.kind) {
        case TokenKind::Number: return std::make_unique<ConstantNode>(token.text.toDouble());
        case TokenKind::String: return std::make_unique<ConstantNode>(token.text);
        case TokenKind::Variable: return variable(token.text);
        case TokenKind::QuotedName: return name(token.text);
        case TokenKind::Name:
            if (takeSymbol(u"("))
                return call(token.text);
            return name(token.text);
        case TokenKind::Symbol:
            if (token.text == u"(") {
                Node inner = logical();
                if (!takeSymbol(u")"))
                    return fail(u"Niedomknięty nawias w wyrażeniu: [%1]"_s.arg(source_));
                return inner;
            }
            break;
        case TokenKind::End: break;
        }
        return fail(u"Nieobsługiwane wyrażenie: [%1]"_s.arg(source_));
    }

    Node variable(const QString& inner)
    {
        Parser nested(inner, scope_);
        return nested.parse();
    }

    // A name alone is a system value; followed by a dot it is a link's field.
    Node name(const QString& first)
    {
        if (takeSymbol(u".")) {
            const Token field = take();
            if (field.kind != TokenKind::QuotedName && field.kind != TokenKind::Name)
                return fail(u"Nieobsługiwane wyrażenie: [%1]"_s.arg(source_));
            return fieldOf(first, field.text);
        }
        return systemValue(first);
    }

    Node systemValue(const QString& name)
    {
        static const std::vector<std::pair<QString, SystemName>> names{{u"Page#"_s, SystemName::Page},
                                                                       {u"Page"_s, SystemName::Page},
                                                                       {u"TotalPages#"_s, SystemName::TotalPages},
                                                                       {u"TotalPages"_s, SystemName::TotalPages},
                                                                       {u"Date"_s, SystemName::Date},
                                                                       {u"Time"_s, SystemName::Time},
                                                                       {u"Line#"_s, SystemName::Line},
                                                                       {u"Line"_s, SystemName::Line}};
        for (const auto& [known, kind] : names)
            if (name.compare(known, Qt::CaseInsensitive) == 0)
                return std::make_unique<SystemNode>(kind);
        if (name.compare(u"True", Qt::CaseInsensitive) == 0 || name.compare(u"False", Qt::CaseInsensitive) == 0)
            return std::make_unique<ConstantNode>(name.compare(u"True", Qt::CaseInsensitive) == 0);
        return fail(u"Nieznana zmienna: %1"_s.arg(name));
    }

    Node fieldOf(const QString& linkName, const QString& fieldName)
    {
        const LinkCursor* cursor = scope_.link(linkName);
        if (!cursor)
            return fail(u"Nieznane źródło danych: %1"_s.arg(linkName));
        if (!cursor->table)
            return std::make_unique<ConstantNode>(ReportValue());
        const Table& table = *cursor->table;
        for (int i = 0; i < table.fieldCount(); ++i)
            if (table.fields()[static_cast<std::size_t>(i)].name.compare(fieldName, Qt::CaseInsensitive) == 0)
                return std::make_unique<FieldNode>(*cursor, i);
        // An empty table never prints a row, so a template made for another
        // table that is bound here only for the moment is no fault.
        if (table.isEmpty())
            return std::make_unique<ConstantNode>(ReportValue());
        return fail(u"Nieznane pole: %1.\"%2\""_s.arg(linkName, fieldName));
    }

    Node call(const QString& function)
    {
        std::vector<Node> arguments;
        std::vector<QString> bareNames; // an aggregate's band argument is a bare name
        if (!takeSymbol(u")")) {
            do {
                bareNames.push_back(peek().kind == TokenKind::Name &&
                                            tokens_[position_ + 1].kind == TokenKind::Symbol &&
                                            (tokens_[position_ + 1].text == u"," || tokens_[position_ + 1].text == u")")
                                        ? peek().text
                                        : QString());
                if (!bareNames.back().isEmpty()) {
                    take();
                    arguments.push_back(nullptr);
                } else {
                    arguments.push_back(logical());
                }
            } while (takeSymbol(u","));
            if (!takeSymbol(u")"))
                return fail(u"Niedomknięty nawias w wyrażeniu: [%1]"_s.arg(source_));
        }
        return applyFunction(function.toUpper(), arguments, bareNames);
    }

    Node applyFunction(const QString& function, std::vector<Node>& arguments, const std::vector<QString>& bareNames)
    {
        if (function == u"IIF" && arguments.size() == 3) {
            for (std::size_t i = 0; i < 3; ++i)
                if (!arguments[i])
                    arguments[i] = systemValue(bareNames[i]);
            return std::make_unique<IifNode>(std::move(arguments[0]), std::move(arguments[1]), std::move(arguments[2]));
        }
        static const std::vector<std::pair<QString, AggregateKind>> aggregates{{u"SUM"_s, AggregateKind::Sum},
                                                                               {u"MIN"_s, AggregateKind::Min},
                                                                               {u"MAX"_s, AggregateKind::Max},
                                                                               {u"AVG"_s, AggregateKind::Avg},
                                                                               {u"COUNT"_s, AggregateKind::Count}};
        for (const auto& [name, kind] : aggregates) {
            if (function != name)
                continue;
            const bool count = kind == AggregateKind::Count;
            const std::size_t bandArgument = count ? 0 : 1;
            if (arguments.size() <= bandArgument || bareNames[bandArgument].isEmpty() || (!count && !arguments[0]))
                return fail(u"Niepoprawna funkcja %1 w wyrażeniu: [%2]"_s.arg(function, source_));
            Node argument = count ? nullptr : std::move(arguments[0]);
            Aggregate* aggregate = scope_.aggregate(kind, std::move(argument), bareNames[bandArgument]);
            if (!aggregate)
                return fail(u"Nieznane pasmo danych %1 w wyrażeniu: [%2]"_s.arg(bareNames[bandArgument], source_));
            return std::make_unique<AggregateNode>(*aggregate);
        }
        return fail(u"Nieobsługiwana funkcja: %1"_s.arg(function));
    }

    const QString& source_;
    ExpressionScope& scope_;
    std::vector<Token> tokens_;
    std::size_t position_ = 0;
    bool failed_ = false;
};

} // namespace

std::unique_ptr<ExpressionNode> ParseExpression(const QString& source, ExpressionScope& scope)
{
    Parser parser(source, scope);
    return parser.parse();
}
