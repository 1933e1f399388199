#pragma once

#include "device/BareChartView.h"
#include "device/ChartWindow.h"
#include "device/CpuWave.h"
#include "device/DateValueFormatter.h"
#include "device/SymbolsValueFormatter.h"
#include "ui/widgets/FocusRing.h"
#include "ui/widgets/SelfDescribing.h"

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QList>

class QLineSeries;
class QValueAxis;

namespace halvane::device {

/// Line chart of the processors' usage, from 0 to 100 per cent. A double click zooms in along the line, until
/// the next one shows all again; a drag moves along it and glides on a little. By keyboard: plus, minus, the
/// arrow keys, and Escape for all. The wheel does as plus and minus. Main thread.
class UsageChartView final : public BareChartView, public ui::SelfDescribing {
public:
    explicit UsageChartView(QWidget* parent);

    /// Draws the line in its pieces. Call it when somebody can see it.
    void setData(const CpuWave& wave);
    /// What a screen reader says: the figure of now, and the range of the samples.
    void setDescription(const QString& text) { description_ = text; }

    [[nodiscard]] const ChartWindow& shownPart() const { return shownPart_; }
    /// The pieces of the line as they are drawn, from left to right.
    [[nodiscard]] QList<QList<QPointF>> drawnPieces() const;

    [[nodiscard]] QAccessible::Role accessibleRole() const override { return QAccessible::Chart; }
    [[nodiscard]] QString accessibleText() const override { return description_; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void drawForeground(QPainter* painter, const QRectF& rect) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    void setUpAxes();
    QLineSeries* addSeries();
    void zoomAt(double position, double factor);
    void showAll();
    void move(double distance);
    void applyShownPart();
    /// Points of the line to a logical pixel.
    [[nodiscard]] double pointsToPixel() const;
    [[nodiscard]] double positionOf(const QPointF& place) const;

    const SymbolsValueFormatter yTexts_;
    const DateValueFormatter xTexts_;  ///< the samples have no names
    QValueAxis* yAxis_ = nullptr;
    QValueAxis* xAxis_ = nullptr;
    QList<QLineSeries*> series_;  ///< as many as the line ever had pieces
    ChartWindow shownPart_;
    QString description_;
    ui::FocusRing ring_;

    bool dragging_ = false;
    double dragX_ = 0;
    double speed_ = 0;  ///< of the drag, in pixels to a frame
    QElapsedTimer sinceMove_;
    QBasicTimer glide_;
};

}  // namespace halvane::device
