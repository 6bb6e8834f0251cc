#pragma once

#include "DeviceTreeOperation.h"
#include "ExportTypes.h"

#include <QWidget>

class PluginInterface : public QWidget
{
    Q_OBJECT

public:
    PluginInterface(const QString &name, int pluginType, QWidget *parent);
    ~PluginInterface() override;

    QString name() const;
    QString key() const;
    void setKey(const QString &key);
    int pluginType();
    void exportValue(const export_type_t *type, QVariant value);

    virtual QString version();
    virtual void aboutToExit();
    virtual void setEnabled(bool enabled);
    virtual void importValue(const export_type_t *type, QVariant value, QObject *sender);

signals:
    void signalDeviceTreeOperation(const eDeviceTreeOperation &operation, const QString &key,
                                   const QVariant &value);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    int m_type;
    int m_timesShown = 0;
    int m_timesHidden = 0;
    QString m_givenName;
    QString m_givenKey;
};
