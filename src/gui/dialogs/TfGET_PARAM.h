#pragma once

#include <QDialog>

#include <functional>
#include <utility>

class AgeLimitsPanel;
class QLineEdit;

// "Parametry": the age limits of section "WIEK" and the CSV folder ("PATHS"/"CSV")
// of the settings file. Loads at creation; OK saves and closes only when the save
// succeeded; Cancel discards (except a restore of defaults, which is written at once).
class TfGET_PARAM : public QDialog {
    Q_OBJECT

public:
    // Yes/No question; true for Yes.
    using Question = std::function<bool(QWidget* parent, const QString& title, const QString& text)>;
    // Folder picker starting at the given folder; an empty result means cancelled.
    using FolderPicker = std::function<QString(QWidget* parent, const QString& startFolder)>;
    using ErrorReport = std::function<void(QWidget* parent, const QString& title, const QString& text)>;

    TfGET_PARAM(QString settingsFile, QString defaultCsvFolder, QWidget* parent = nullptr);

    bool save();
    void restoreDefaults();
    void chooseCsvFolder();

    void setQuestion(Question question) { question_ = std::move(question); }
    void setFolderPicker(FolderPicker picker) { folderPicker_ = std::move(picker); }
    void setErrorReport(ErrorReport report) { errorReport_ = std::move(report); }

    QString csvFolder() const;

public Q_SLOTS:
    void accept() override;

private:
    QWidget* buildCsvRow();
    void load();

    QString settingsFile_;
    QString defaultCsvFolder_;
    AgeLimitsPanel* limitsPanel_ = nullptr;
    QLineEdit* csvEdit_ = nullptr;
    Question question_;
    FolderPicker folderPicker_;
    ErrorReport errorReport_;
};

// Shows "Parametry" modally; OK saves, Cancel discards.
void OpenParameters(const QString& settingsFile, const QString& defaultCsvFolder, QWidget* parent);
