#include <QApplication>
#include <QChart>
#include <QChartView>
#include <QLineSeries>
#include <QTimer>

// The peer of the page of the computer: the least that a Qt Charts program with a line of a hundred points can
// be, which changes once a second. An argument becomes its title: what a text in the language of the pages costs.
int main(int argc, char** argv) {
    QApplication application(argc, argv);
    auto* series = new QLineSeries;
    for (int i = 0; i < 100; ++i) series->append(i, 0);
    auto* chart = new QChart;
    chart->addSeries(series);
    chart->createDefaultAxes();
    chart->axes(Qt::Vertical).constFirst()->setRange(0, 100);
    chart->legend()->hide();
    if (argc > 1) chart->setTitle(QString::fromLocal8Bit(argv[1]));
    QChartView view(chart);
    view.setRenderHint(QPainter::Antialiasing);
    view.resize(960, 640);
    view.show();
    QTimer timer;
    int turn = 0;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
        QList<QPointF> points;
        for (int i = 0; i < 100; ++i) points.append(QPointF(i, (i * 7 + turn * 13) % 60));
        series->replace(points);
        ++turn;
    });
    timer.start(1000);
    return QApplication::exec();
}
