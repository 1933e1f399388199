#pragma once

#include <QChartView>

namespace halvane::device {

/// A chart on the ground of a card and nothing around it: no legend, frame, scroll bar or animation. Nothing in it
/// answers to the pointer by itself. Main thread.
class BareChartView : public QChartView {
public:
    explicit BareChartView(QWidget* parent);
};

}  // namespace halvane::device
