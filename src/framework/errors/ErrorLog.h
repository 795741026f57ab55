#pragma once

#include <QString>

// The error log "BLEDY.LOG" in the data folder: per error a line
// "Error. Date: <date> Time: <time> User: <user> ", then the report and a line
// break, Windows-1250 with CRLF. Past MaxBytes the log moves to "BLEDY.1.LOG"
// (replacing an older one), so it never grows without end.
class ErrorLog {
public:
    static constexpr qint64 MaxBytes = 1 << 20;

    explicit ErrorLog(QString path) : path_(std::move(path)) {}

    // False when the log cannot be written; an error report must not fail for it.
    // Empty when the report is on the disk; else why not (the log is then as it was).
    QString append(const QString& report) const;

    const QString& path() const { return path_; }

private:
    void rotate() const;

    QString path_;
};

// The system's name of the user running the program; empty when unknown.
QString SystemUserName();
