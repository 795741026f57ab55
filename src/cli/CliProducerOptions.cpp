#include "cli/CliProducerOptions.h"

#include "cli/CliHost.h"
#include "cli/CliOptions.h"
#include "framework/Cp1250.h"

#include <QCommandLineParser>
#include <QRegularExpression>

#include <algorithm>
#include <termios.h>
#include <unistd.h>
#include <vector>

using namespace Qt::StringLiterals;

namespace {
using Action = CliProducerOptions::Action;

// The longest values a record of "KNTRH_V002.DAT" holds.
constexpr int NameLength = 50;
constexpr int LoginLength = 30;
constexpr int PasswordLength = 30;

struct ActionEntry {
    const char* word;
    Action action;
    QStringList allowed; // options besides --data-dir
};

const std::vector<ActionEntry>& Actions()
{
    static const std::vector<ActionEntry> actions{
        {"list", Action::List, {}},
        {"add", Action::Add, {u"name"_s, u"login"_s, u"producer"_s, u"limits"_s, u"password-stdin"_s}},
        {"edit", Action::Edit, {u"id"_s, u"name"_s, u"login"_s, u"producer"_s, u"limits"_s, u"password-stdin"_s}},
        {"remove", Action::Remove, {u"id"_s, u"yes"_s}},
    };
    return actions;
}

void AddOptions(QCommandLineParser& parser)
{
    parser.setApplicationDescription(u"Halvarn: lista kontrahentów (producentów) w folderze danych"_s);
    parser.addHelpOption();
    parser.addPositionalArgument(u"producers"_s, u"lista kontrahentów"_s);
    parser.addPositionalArgument(u"list|add|edit|remove"_s, u"wypisz, dodaj, zmień albo usuń pozycję"_s);
    parser.addOptions({
        Value("data-dir", "folder danych programu", "DIR"),
        Value("id", "ID pozycji (edit, remove)", "N"),
        Value("name", "nazwa producenta (najwyżej 50 znaków)", "TEXT"),
        Value("login", "login do rejestru (najwyżej 30 znaków)", "L"),
        Value("producer", "numer producenta, najwyżej 9 cyfr (bez PL)", "N"),
        Value("limits",
              "zadeklarowane liczby zwierząt: krowy mamki, opasy do 150, 150–220, 220–300, 300–450, "
              "ponad 450, krowy mleczne",
              "a,b,c,d,e,f,g"),
        {u"password-stdin"_s, u"nowe hasło z pierwszego wiersza standardowego wejścia"_s},
        {u"yes"_s, u"usuń bez pytania"_s},
    });
}

// Text a record keeps as typed: within its length, no control characters, Windows-1250 only.
bool Storable(const QString& text, int longest)
{
    const auto control = [](QChar c) { return c.category() == QChar::Other_Control; };
    return text.size() <= longest && std::none_of(text.begin(), text.end(), control) &&
           FromCp1250(ToCp1250(text)) == text;
}

bool CheckText(const char* option, const QString& text, int longest, QString& error)
{
    if (!text.trimmed().isEmpty() && Storable(text, longest))
        return true;
    error = u"Niepoprawna wartość --%1: „%2” (od 1 do %3 znaków, bez znaków sterujących, "
            u"tylko znaki Windows-1250)"_s.arg(QLatin1String(option), text)
                .arg(longest);
    return false;
}

bool CheckProducerNumber(const QString& number, QString& error)
{
    static const QRegularExpression digits(u"^[0-9]{1,9}$"_s);
    if (digits.match(number).hasMatch())
        return true;
    error = u"Numer producenta (--producer) może mieć najwyżej 9 cyfr, bez PL: %1"_s.arg(number);
    return false;
}

bool ParseId(const QString& text, qint32& id, QString& error)
{
    bool ok = false;
    id = text.toInt(&ok);
    if (ok && id > 0)
        return true;
    error = u"Niepoprawne ID pozycji --id: %1"_s.arg(text);
    return false;
}

bool FindAction(const QStringList& positional, const ActionEntry*& chosen)
{
    if (positional.size() != 2 || positional.front() != u"producers")
        return false;
    const auto& actions = Actions();
    const auto found = std::find_if(actions.begin(), actions.end(),
                                    [&](const ActionEntry& a) { return positional.back() == QLatin1String(a.word); });
    chosen = found == actions.end() ? nullptr : &*found;
    return chosen != nullptr;
}

bool OnlyAllowedOptions(const QCommandLineParser& parser, const ActionEntry& entry, QString& error)
{
    for (const QString& option : parser.optionNames()) {
        if (option != u"data-dir" && !entry.allowed.contains(option)) {
            error = u"Opcja --%1 nie dotyczy polecenia producers %2"_s.arg(option, QLatin1String(entry.word));
            return false;
        }
    }
    return true;
}

bool RequiredOptions(const QCommandLineParser& parser, Action action, QString& error)
{
    QStringList required;
    if (action == Action::Add)
        required = {u"name"_s, u"login"_s, u"producer"_s};
    else if (action == Action::Edit || action == Action::Remove)
        required = {u"id"_s};
    for (const QString& option : required) {
        if (!parser.isSet(option)) {
            error = u"Brak opcji --%1"_s.arg(option);
            return false;
        }
    }
    return true;
}

std::optional<QString> Given(const QCommandLineParser& parser, const char* option)
{
    const QString name = QLatin1String(option);
    return parser.isSet(name) ? std::optional(parser.value(name)) : std::nullopt;
}

bool CheckValues(const CliProducerOptions& options, QString& error)
{
    return (!options.name || CheckText("name", *options.name, NameLength, error)) &&
           (!options.login || CheckText("login", *options.login, LoginLength, error)) &&
           (!options.producerNumber || CheckProducerNumber(*options.producerNumber, error));
}

// The first line of standard input; on a terminal it is asked for and not echoed.
QString ReadPasswordLine()
{
    if (!::isatty(STDIN_FILENO))
        return ReadInputLine();
    QTextStream err(stderr);
    err << u"Hasło: "_s << Qt::flush;
    termios saved{};
    const bool hidden = ::tcgetattr(STDIN_FILENO, &saved) == 0;
    if (hidden) {
        termios silent = saved;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
    }
    const QString line = ReadInputLine();
    if (hidden)
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &saved);
    err << Qt::endl;
    return line;
}

// --password-stdin before HALVARN_PASSWORD; add without either reads standard
// input, edit without either keeps the stored password.
bool ReadNewPassword(bool fromStdin, Action action, std::optional<QString>& password, QString& error)
{
    const QString environment = qEnvironmentVariable("HALVARN_PASSWORD");
    if (!fromStdin && !environment.isEmpty())
        password = environment;
    else if (fromStdin || action == Action::Add)
        password = ReadPasswordLine();
    if (password && password->isNull()) {
        error = u"Brak hasła: ustaw zmienną HALVARN_PASSWORD albo podaj hasło w pierwszym wierszu "
                u"standardowego wejścia"_s;
        return false;
    }
    if (password && !Storable(*password, PasswordLength)) {
        error = u"Hasło może mieć najwyżej %1 znaków, bez znaków sterujących, tylko znaki Windows-1250"_s.arg(
            PasswordLength);
        return false;
    }
    return true;
}

bool SomethingToChange(const CliProducerOptions& options, QString& error)
{
    if (options.action != Action::Edit || options.name || options.login || options.producerNumber || options.limits ||
        options.password)
        return true;
    error = u"Podaj, co zmienić: --name, --login, --producer, --limits albo nowe hasło "
            u"(--password-stdin lub HALVARN_PASSWORD)"_s;
    return false;
}
} // namespace

bool ParseDeclaredLimits(const QString& text, DeclaredLimits& limits, QString& error)
{
    static const QRegularExpression number(u"^[0-9]{1,9}$"_s);
    const QStringList parts = text.split(u',');
    bool valid = parts.size() == DeclaredGroupCount;
    for (int i = 0; valid && i < DeclaredGroupCount; ++i) {
        valid = number.match(parts[i].trimmed()).hasMatch();
        limits[static_cast<std::size_t>(i)] = parts[i].trimmed().toInt();
    }
    if (valid)
        return true;
    QStringList groups;
    for (int i = 0; i < DeclaredGroupCount; ++i)
        groups.append(DeclaredGroupName(static_cast<DeclaredGroup>(i)));
    error = u"Niepoprawne --limits: %1 (siedem liczb całkowitych nieujemnych rozdzielonych przecinkami, "
            u"kolejno: %2)"_s.arg(text, groups.join(u", "_s));
    return false;
}

bool CliProducerOptions::parse(const QStringList& arguments, QString& error)
{
    QCommandLineParser parser;
    AddOptions(parser);
    if (!parser.parse(arguments)) {
        error = parser.errorText();
        return false;
    }
    const ActionEntry* chosen = nullptr;
    if (parser.isSet(u"help"_s) || !FindAction(parser.positionalArguments(), chosen)) {
        error = parser.helpText();
        return false;
    }
    action = chosen->action;
    if (!OnlyAllowedOptions(parser, *chosen, error) || !RequiredOptions(parser, action, error))
        return false;
    dataDir = parser.value(u"data-dir"_s);
    name = Given(parser, "name");
    login = Given(parser, "login");
    producerNumber = Given(parser, "producer");
    answerYes = parser.isSet(u"yes"_s);
    if (parser.isSet(u"id"_s) && !ParseId(parser.value(u"id"_s), id, error))
        return false;
    if (parser.isSet(u"limits"_s) && !ParseDeclaredLimits(parser.value(u"limits"_s), limits.emplace(), error))
        return false;
    return CheckValues(*this, error) &&
           (action == Action::List || action == Action::Remove ||
            ReadNewPassword(parser.isSet(u"password-stdin"_s), action, password, error)) &&
           SomethingToChange(*this, error);
}
