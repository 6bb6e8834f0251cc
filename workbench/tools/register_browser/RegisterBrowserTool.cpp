#include "RegisterBrowserTool.h"

#include "FieldTableModel.h"
#include "RegisterBrowserPanel.h"
#include "RegisterFilter.h"
#include "RegisterList.h"
#include "RegisterTableModel.h"
#include "ToolRequests.h"

#include "ChipInfo.h"
#include "ExportTypes.h"
#include "HostLocale.h"
#include "QVXLModuleInterface.h"
#include "XmlValueRegister.h"
#include "XmlValueRegisterField.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

namespace {

const auto className = QStringLiteral("RegisterBrowserTool");
const auto toolIcon = QStringLiteral(":/Software-Icons/Code-Editor");
const auto title = QStringLiteral("Register browser");

} // namespace

RegisterBrowserTool::RegisterBrowserTool()
    : ToolsInterface(QStringLiteral("undefined"), className, ToolsType::RegisterBrowser, 0, nullptr,
                     toolIcon, nullptr)
{
}

RegisterBrowserTool::RegisterBrowserTool(const QString &name, unsigned char motor,
                                         QVXLModuleInterface *module)
    : ToolsInterface(name, className, ToolsType::RegisterBrowser, motor, module, toolIcon, nullptr)
{
    setToolsName(title);
    setWindowTitle(title);
    setLocale(curLocale);
    buildPanel();
    connectPanel();
    connectModels();
    followModule();
    showSelected();
}

QString RegisterBrowserTool::version()
{
    return QStringLiteral("1.0.0 - register browser");
}

ToolsInterface *RegisterBrowserTool::clone(QString name, unsigned char motor,
                                           QVXLModuleInterface *module)
{
    return new RegisterBrowserTool(name, motor, module);
}

void RegisterBrowserTool::buildPanel()
{
    registers = new RegisterTableModel(ChipInfo::registers(tools::chipOf(this)), this);
    filter = new RegisterFilter(this);
    filter->setSourceModel(registers);
    fields = new FieldTableModel(this);
    panel = new RegisterBrowserPanel(filter, fields, this);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(panel);
}

void RegisterBrowserTool::connectPanel()
{
    connect(panel->search, &QLineEdit::textChanged, this, [this](const QString &text) {
        filter->setSearchText(text);
        restartPolling();
    });
    connect(panel->showAll, &QPushButton::clicked, this, [this] {
        panel->search->clear();
        filter->setWanted(std::nullopt);
        panel->showStatus(QString());
        restartPolling();
    });
    connect(panel->live, &QCheckBox::toggled, this, &RegisterBrowserTool::restartPolling);
    connect(panel->rate, qOverload<double>(&QDoubleSpinBox::valueChanged), this,
            &RegisterBrowserTool::restartPolling);
    connect(panel->registers->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &RegisterBrowserTool::showSelected);
}

// Requests to write are queued: listeners of the write may delete this tool, which the editor that
// the user is leaving would not survive.
void RegisterBrowserTool::connectModels()
{
    connect(registers, &RegisterTableModel::writeRequested, this,
            &RegisterBrowserTool::writeRegister, Qt::QueuedConnection);
    connect(fields, &FieldTableModel::writeRequested, this,
            [this](XmlValueRegisterField *field, int value) {
                const auto write = [this, guard = QPointer<XmlValueRegisterField>(field), value] {
                    writeField(guard, value);
                };
                QMetaObject::invokeMethod(this, write, Qt::QueuedConnection);
            });
    connect(registers, &RegisterTableModel::entryRefused, panel, &RegisterBrowserPanel::showStatus);
    connect(fields, &FieldTableModel::entryRefused, panel, &RegisterBrowserPanel::showStatus);
    connect(registers, &RegisterTableModel::rowChanged, this, [this](int row) {
        if (row == selectedRow())
            updateFields();
    });
}

void RegisterBrowserTool::followModule()
{
    if (registers->rowCount() == 0)
        panel->showStatus(QStringLiteral("There is no chip description for this tool."));
    if (!module())
        return;
    connect(module(), &QVXLModuleInterface::registerOutputBufferHasWritten, this,
            [this](unsigned short address, int value, int, unsigned char writtenFor) {
                takeWrite(address, value, writtenFor);
            });
    connect(module(), &QObject::destroyed, this, &RegisterBrowserTool::handleModuleGone);
}

void RegisterBrowserTool::handleModuleGone()
{
    pollTimer.stop();
    for (int row = 0; row < registers->rowCount(); ++row)
        registers->setUnanswered(row);
    panel->showStatus(QStringLiteral("The module is gone."));
}

/// Lists are published to all plug-ins, so those of other modules' tools, whose chips have other
/// addresses, come here too.
void RegisterBrowserTool::importValue(const export_type_t *type, QVariant value, QObject *sender)
{
    if (!panel || !type || type->name != ExportTypes::RegisterList.name)
        return;
    auto *const tool = qobject_cast<ToolsInterface *>(sender);
    if (tool && tool->module() != module())
        return;
    if (const auto addresses = registerAddresses(value))
        showOnly(*addresses);
}

void RegisterBrowserTool::showOnly(const QSet<unsigned int> &addresses)
{
    QSet<unsigned int> known;
    for (const unsigned int address : addresses) {
        if (registers->rowOf(address) >= 0)
            known.insert(address);
    }
    if (known.isEmpty()) {
        panel->showStatus(QStringLiteral("The list received holds no register of this chip."));
        return;
    }
    panel->search->clear();
    filter->setWanted(known);
    panel->showStatus(QStringLiteral("%1 registers received.").arg(known.size()));
    restartPolling();
}

int RegisterBrowserTool::selectedRow() const
{
    const QModelIndexList rows = panel->registers->selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : filter->mapToSource(rows.first()).row();
}

void RegisterBrowserTool::showSelected()
{
    const int row = selectedRow();
    XmlValueRegister *const reg = row < 0 ? nullptr : registers->registerAt(row);
    panel->fieldsTitle->setText(reg ? QStringLiteral("Fields of %1").arg(reg->name())
                                    : QStringLiteral("Select a register to see its fields"));
    fields->showRegister(reg);
    updateFields();
    panel->fitFieldColumns();
}

void RegisterBrowserTool::updateFields()
{
    const int row = selectedRow();
    if (row >= 0)
        fields->setValue(registers->valueAt(row), registers->isAnswering(row));
}
