#pragma once

#include "ToolsInterface.h"

#include <QBasicTimer>
#include <QSet>
#include <QVector>

class FieldTableModel;
class RegisterBrowserPanel;
class RegisterFilter;
class RegisterTableModel;
class XmlValueRegister;
class XmlValueRegisterField;

/// Shows the registers of a module's chip, keeps their values up to date while on screen, and lets
/// the user write those that can be written. Other tools choose which registers it shows by
/// exporting a register list.
class RegisterBrowserTool : public ToolsInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.qvx.ToolsInterface/2.0" FILE "../tools.json")
    Q_INTERFACES(ToolsInterface)

public:
    /// The prototype: it has no panel and answers everything quietly.
    RegisterBrowserTool();

    QString version() override;
    void importValue(const export_type_t *type, QVariant value, QObject *sender) override;
    void showPlugin() override;
    void hidePlugin() override;
    ToolsInterface *clone(QString name, unsigned char motor, QVXLModuleInterface *module) override;

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    RegisterBrowserTool(const QString &name, unsigned char motor, QVXLModuleInterface *module);

    void buildPanel();
    void connectPanel();
    void connectModels();
    void followModule();

    void restartPolling();
    int pollIntervalMs(int registersShown) const;
    void readSome();
    bool readRow(int row);
    QVector<int> rowsToRead() const;

    void takeWrite(unsigned int address, int value, unsigned char writtenFor);
    void writeRegister(unsigned int address, int value);
    void writeField(XmlValueRegisterField *field, int value);
    void takeReadBack(XmlValueRegisterField *field, int readBack);
    void handleModuleGone();

    void showOnly(const QSet<unsigned int> &addresses);
    void showSelected();
    void updateFields();
    int selectedRow() const;

    RegisterTableModel *registers = nullptr;
    RegisterFilter *filter = nullptr;
    FieldTableModel *fields = nullptr;
    RegisterBrowserPanel *panel = nullptr;
    QBasicTimer pollTimer;
    bool isOnScreen = false;
    int lastRowRead = -1;
};
