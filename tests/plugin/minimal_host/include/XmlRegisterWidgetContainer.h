#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QWidget>

class QLayout;
class XmlRegisterWidget;

class XmlRegisterWidgetContainer : public QObject
{
    Q_OBJECT

public:
    XmlRegisterWidgetContainer(QLayout *layout, QObject *parent, QString title);
    ~XmlRegisterWidgetContainer() override;

    void addXmlWidget(XmlRegisterWidget *widget);
    QList<XmlRegisterWidget *> getXmlWidgets() const;
    QWidget *widget();

private:
    QString m_title;
    QList<XmlRegisterWidget *> m_widgets;
    QPointer<QWidget> m_page;
};
