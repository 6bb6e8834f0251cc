#include "XmlRegisterWidgetContainer.h"

#include "XmlRegisterWidget_p.h"

#include <QFormLayout>
#include <QGroupBox>

class XmlRegisterWidgetContainerPrivate
{
public:
    void addRow(XmlRegisterWidget *widget);
    void removeOrphanedRows();

    struct Row
    {
        QPointer<XmlRegisterWidget> widget;
        /// Holds the input and the actual value, without a form layout the label too.
        QPointer<QWidget> box;
    };

    QPointer<QWidget> carrier;
    QPointer<QLayout> layout;
    QList<Row> rows;
};

void XmlRegisterWidgetContainerPrivate::addRow(XmlRegisterWidget *widget)
{
    const auto *const parts = XmlRegisterWidgetPrivate::of(widget);
    Row row{widget, nullptr};
    if (layout && parts->label && parts->input && parts->actual) {
        row.box = new QWidget;
        auto *const line = new QHBoxLayout(row.box);
        line->setContentsMargins(0, 0, 0, 0);
        auto *const form = qobject_cast<QFormLayout *>(layout);
        if (!form)
            line->addWidget(parts->label);
        line->addWidget(parts->input, 1);
        line->addWidget(parts->actual);
        if (form)
            form->addRow(parts->label, row.box);
        else
            layout->addWidget(row.box);
    }
    rows.append(row);
}

void XmlRegisterWidgetContainerPrivate::removeOrphanedRows()
{
    auto *const form = qobject_cast<QFormLayout *>(layout);
    for (int i = rows.size() - 1; i >= 0; --i) {
        if (rows.at(i).widget)
            continue;
        const Row row = rows.takeAt(i);
        if (form && row.box)
            form->removeRow(row.box);
        else
            delete row.box;
    }
}

XmlRegisterWidgetContainer::XmlRegisterWidgetContainer(QLayout *layout, QObject *parent,
                                                       QString title)
    : QObject(parent)
    , d(std::make_unique<XmlRegisterWidgetContainerPrivate>())
{
    d->layout = layout ? layout : new QFormLayout;
    d->carrier = title.isEmpty() ? new QWidget : new QGroupBox(title);
    d->carrier->setLayout(d->layout);
}

XmlRegisterWidgetContainer::~XmlRegisterWidgetContainer()
{
    if (d->carrier && !d->carrier->parent())
        delete d->carrier;
}

void XmlRegisterWidgetContainer::addXmlWidget(XmlRegisterWidget *widget)
{
    if (!widget || getXmlWidgets().contains(widget))
        return;
    d->addRow(widget);
    connect(widget, &QObject::destroyed, this, [this] { d->removeOrphanedRows(); });
}

QList<XmlRegisterWidget *> XmlRegisterWidgetContainer::getXmlWidgets() const
{
    QList<XmlRegisterWidget *> widgets;
    for (const auto &row : qAsConst(d->rows)) {
        if (row.widget)
            widgets.append(row.widget);
    }
    return widgets;
}

QWidget *XmlRegisterWidgetContainer::widget()
{
    return d->carrier;
}
