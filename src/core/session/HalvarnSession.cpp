#include "core/session/HalvarnSession.h"

#include "analysis/AgeLimits.h"
#include "analysis/GroupCatalogue.h"
#include "framework/IniFile.h"

using namespace Qt::StringLiterals;

HalvarnSession::HalvarnSession(DataFolder folder, OperationHost& host) : folder_(std::move(folder)), host_(host)
{
    common = CommonSettings::read(folder_.commonSettingsFile());
}

void HalvarnSession::GatherCredentials()
{
    if (common.torvLogin && inputs.login.isEmpty()) {
        Login = u"uzytkownik.testowy.1"_s;
        Password = u"Zielonka7Kb2!"_s;
        ProducerNumber = u"071234562"_s;
        return;
    }
    Login = inputs.login;
    Password = inputs.password;
    ProducerNumber = inputs.producerNumber;
}

void HalvarnSession::BeginLongOperation()
{
    SetStatusMode(true, false);
    ReadHalvarnFlags();
    setControlsLocked(true);
}

void HalvarnSession::EndLongOperation()
{
    SetStatusMode(false, false);
    setControlsLocked(false);
}

void HalvarnSession::setControlsLocked(bool locked)
{
    for (int slot = 0; slot < HerdSlotCount; ++slot) {
        for (Table* table : {&tables_.mdRZ(slot), &tables_.mdGT(slot)}) {
            if (locked)
                table->disableControls();
            else
                table->enableControls();
        }
    }
}

void HalvarnSession::SetStatusMode(bool busy, bool showHerd)
{
    busy_ = busy;
    if (busy) {
        SetStatusText(StatusPanel::Herd, QString());
        SetStatusText(StatusPanel::Step, QString());
        setProgress(1, 0, 2);
        setProgress(2, 0, progress(2).maximum);
    }
    host_.statusModeChanged(busy, busy && showHerd);
}

void HalvarnSession::SetStatusText(StatusPanel panel, const QString& text)
{
    host_.statusTextChanged(panel, text);
}

void HalvarnSession::setProgress(int bar, int position, int maximum)
{
    progress_[bar == 1 ? 0 : 1] = {position, maximum};
    host_.progressChanged(bar, position, maximum);
}

void HalvarnSession::stepProgress(int bar)
{
    const ProgressBar& p = progress(bar);
    setProgress(bar, p.position + 1, p.maximum);
}

void HalvarnSession::appendError(const QString& line)
{
    errors_.append(line);
    host_.memoAppended(Memo::Errors, line);
}

void HalvarnSession::truncateErrors(int count)
{
    if (count < 0 || count >= errors_.size())
        return;
    errors_.resize(count);
    host_.memoCleared(Memo::Errors);
    for (const QString& line : std::as_const(errors_))
        host_.memoAppended(Memo::Errors, line);
}

void HalvarnSession::appendLoaded(const QString& text)
{
    if (!loaded_.isEmpty())
        loaded_ += u'\n';
    loaded_ += text;
    host_.memoAppended(Memo::Loaded, text);
}

void HalvarnSession::ClearAllData()
{
    ReadHalvarnFlags();
    SetStatusMode(true, true);
    setProgress(1, 0, 65);
    SetStatusText(StatusPanel::Step, u"Czyszczenie danych"_s);
    errors_.clear();
    loaded_.clear();
    answers.clear();
    countedLimits.reset();
    countingLinesFrom = -1;
    archivedAt = {};
    host_.memoCleared(Memo::Loaded);
    host_.memoCleared(Memo::Errors);
    for (int slot = 0; slot < HerdSlotCount; ++slot) {
        THerdSlot& herd = tables_.HerdSlots[static_cast<std::size_t>(slot)];
        SetStatusText(StatusPanel::Herd, u"Stado: "_s + herd.Code);
        stepProgress(1);
        herd.Index = slot == 0 ? -1 : 0;
        herd.Code = slot == 0 ? u"000"_s : QString();
        herd.Visible = false;
        herd.Incomplete.clear();
        herd.AnimalsTable->open();
        herd.GroupsTable->open();
        SetStatusText(StatusPanel::Step, u"Czyszczenie danych RZ"_s);
        stepProgress(1);
        tables_.ClearTable(*herd.AnimalsTable);
        SetStatusText(StatusPanel::Step, u"Czyszczenie danych GT"_s);
        stepProgress(1);
        tables_.ClearTable(*herd.GroupsTable);
    }
    SetStatusText(StatusPanel::Step, u"Tworzenie grup technologicznych"_s);
    stepProgress(1);
    buildCatalogue();
    herdCount = 0;
    DataLoaded = false;
    SetStatusMode(false, false);
}

void HalvarnSession::RebuildGroups()
{
    for (int slot = 0; slot < HerdSlotCount; ++slot)
        tables_.ClearTable(tables_.mdGT(slot));
    buildCatalogue();
}

void HalvarnSession::buildCatalogue()
{
    const IniFile settings(folder_.settingsFile());
    QStringList problems;
    RebuildGroupCatalogue(tables_, AgeLimits::read(settings, &problems), halvarnFlags);
    if (!problems.isEmpty())
        host_.showMessage(u"Informacja"_s, problems.join(u'\n'), MessageIcon::Warning);
}
