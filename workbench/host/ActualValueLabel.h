#pragma once

#include "FieldCoding.h"

#include <QLabel>

/// Shows a field's actual value in the label's locale. As wide as the widest value of the range and
/// of fixed size, so that a value that changes many times a second never lays the window out anew.
class ActualValueLabel : public QLabel
{
public:
    explicit ActualValueLabel(const FieldCoding::Range &range);

    void showValue(int value);

protected:
    void changeEvent(QEvent *event) override;

private:
    void fitToRange();

    FieldCoding::Range range;
    int value = 0;
};
