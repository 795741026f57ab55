#include "framework/errors/ErrorReport.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QRegularExpression>

#include <cstdlib>
#include <cxxabi.h>
#include <memory>
#include <typeinfo>

using namespace Qt::StringLiterals;

namespace {
const QString Separator = u"---------------------------------------"_s;
const QString Hidden = u"***"_s;

QString Demangled(const char* name)
{
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> plain(abi::__cxa_demangle(name, nullptr, nullptr, &status),
                                                            &std::free);
    return QString::fromUtf8(status == 0 && plain ? plain.get() : name);
}

QString CurrentClassName()
{
    const std::type_info* type = abi::__cxa_current_exception_type();
    return type ? Demangled(type->name()) : u"unknown"_s;
}

QString ExceptionLine(const CaughtError& error)
{
    for (const StackFrame& frame : error.stack)
        if (!frame.file.isEmpty())
            return u"Exception %1 in %2, line %3 of %4"_s.arg(error.className, frame.function)
                .arg(frame.line)
                .arg(QFileInfo(frame.file).fileName());
    const QString where = error.stack.empty() ? u"??"_s : error.stack.front().address;
    return u"Exception %1 at %2"_s.arg(error.className, where);
}
} // namespace

CaughtError Describe(const std::exception_ptr& error)
{
    CaughtError caught;
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& e) {
        caught = {CurrentClassName(), QString::fromUtf8(e.what()), {}};
    } catch (...) {
        caught = {CurrentClassName(), u"nieznany wyjątek"_s, {}};
    }
    // A rethrow does not pass the throw hook, so the last throw is this exception's.
    caught.stack = LastThrowStack();
    if (caught.stack.empty())
        caught.stack = CallStackHere(1);
    return caught;
}

ProductNames ProgramNames()
{
    return {u"Fernhill"_s, u"Halvarn Bydła "_s + QCoreApplication::applicationVersion()};
}

QStringList ReportLines(const CaughtError& error, const QString& attachment, const ProductNames& names)
{
    QStringList lines{ExceptionLine(error), error.message, QString(), Separator, u" CallStack:"_s, Separator};
    for (const StackFrame& frame : error.stack)
        lines.append(FrameText(frame));
    lines.append(QString());
    if (!attachment.isEmpty())
        lines.append(u"Załącznik: "_s + attachment);
    lines.append(QString());
    lines.append(names.company);
    lines.append(names.product);
    return lines;
}

void SecretScrubber::add(const QString& secret)
{
    // Very short values would blank out ordinary words.
    if (secret.size() >= 3 && !secrets_.contains(secret))
        secrets_.append(secret);
}

QString SecretScrubber::scrub(QString text) const
{
    for (const QString& secret : secrets_)
        text.replace(secret, Hidden);
    static const QRegularExpression bearer(u"(Bearer\\s+)\\S+"_s, QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression keyed(
        u"((?:password|passwd|haslo|hasło|access_token|refresh_token|token)\"?\\s*[=:]\\s*\"?)[^\"&\\s;,]+"_s,
        QRegularExpression::CaseInsensitiveOption);
    text.replace(bearer, u"\\1"_s + Hidden);
    text.replace(keyed, u"\\1"_s + Hidden);
    return text;
}
