#pragma once

#include "HostModule.h"
#include "PluginRig.h"
#include "RecordingLink.h"

#include <QModelIndex>
#include <QVector>

#include <memory>

class QLineEdit;
class QTableView;
class XmlProductIC;
class XmlValueRegister;

/// Notes whether the module was in circular mode at each read, and keeps some bits only.
struct ModeWatchingLink : RecordingLink
{
    HostModule *module = nullptr;
    QVector<bool> modes;
    int keptBits = -1;

    bool readRegister(unsigned int address, unsigned char motor, int *value) override;
};

/// Base of the tests of the register browser: a browser of motor 0, not yet on screen, on a module
/// whose one chip serves motors 0 and 1 and whose link is a recording one.
class BrowserRig : public PluginRig
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

protected:
    enum Column { Address, Name, Access, Hexadecimal, Decimal, Unit, State, Description };
    enum FieldColumn { Identifier, FieldName, Bits, Value, Range };

    // Of the registers of the test's chip, ten can be read and seen.
    static constexpr int readableCount = 10;

    BrowserRig();

    /// The test's chip: registers plain, signed, of several fields, write-only and hidden.
    static std::shared_ptr<XmlProductIC> makeProduct();
    XmlValueRegister *reg(const char *name) const;

    QTableView *table(const char *name = "tvRegisters") const;
    QStringList names() const;
    QModelIndex cell(const QString &registerName, int column) const;
    QString text(const QString &registerName, int column) const;
    bool isGrey(const QString &registerName) const;

    /// Delivers the event of the object's first timer; false when none is active.
    static bool deliverTimer(QObject *object);
    void round() const;

    /// The editor behind a double click on a cell; null when that opens none.
    QLineEdit *openEditor(QTableView *view, const QModelIndex &index) const;
    void enter(QTableView *view, const QModelIndex &index, const QString &entered) const;
    static void settle();
    QStringList takeWrites() { return link.takeCalls().filter(QStringLiteral("write ")); }

    static QVariantList listOf(const QList<unsigned int> &addresses);
    void import(const QVariant &value, QObject *sender = nullptr) const;

    ModeWatchingLink link;
    std::unique_ptr<HostModule> module;

private:
    void letSearchFieldFinish();
};
