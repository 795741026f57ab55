#pragma once

#include "framework/errors/CallStack.h"

#include <QStringList>

#include <exception>

// An error that no command handled, as a report shows it.
struct CaughtError {
    QString className; // the exception's type, demangled
    QString message;
    std::vector<StackFrame> stack; // innermost first; the first frame with a source is the throw site
};

// The exception in flight (or one given) with the stack of its throw where the
// build has it, else the stack of the catch.
CaughtError Describe(const std::exception_ptr& error);

struct ProductNames {
    QString company;
    QString product;
};

// This program's company and product, the product with its version.
ProductNames ProgramNames();

// The report, line by line: "Exception %s in %s, line %d of %s" when the
// source of the throw is known, else "Exception %s at %s"; the message; the
// call stack between separators; "Załącznik: " and the screenshot's name when
// one was taken; the company and the product.
QStringList ReportLines(const CaughtError& error, const QString& attachment, const ProductNames& names);

// Removes what must never leave the machine: the given secrets (passwords,
// tokens, log-ins) and anything that looks like one.
class SecretScrubber {
public:
    void add(const QString& secret);
    QString scrub(QString text) const;

private:
    QStringList secrets_;
};
