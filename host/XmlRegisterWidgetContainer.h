#pragma once

#include <QList>
#include <QObject>
#include <QString>

#include <memory>

class QLayout;
class QWidget;
class XmlRegisterWidget;
class XmlRegisterWidgetContainerPrivate;

/// Lays register widgets out below each other.
class XmlRegisterWidgetContainer : public QObject
{
    Q_OBJECT

public:
    /// Takes `layout`, which has no parent, for a widget of its own. An empty title shows none.
    XmlRegisterWidgetContainer(QLayout *layout, QObject *parent, QString title);
    ~XmlRegisterWidgetContainer() override;

    /// Appends a widget; it stays with its owner and leaves the container when it is deleted.
    void addXmlWidget(XmlRegisterWidget *widget);

    /// The widgets in the order in which they were added.
    QList<XmlRegisterWidget *> getXmlWidgets() const;

    /// The widget that carries the layout. Whoever puts it into a layout becomes its parent.
    QWidget *widget();

private:
    friend class XmlRegisterWidgetContainerPrivate;
    std::unique_ptr<XmlRegisterWidgetContainerPrivate> d;
};
