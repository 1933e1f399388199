#include "device/HardwareSummaryView.h"

#include "ui/widgets/HDCLUICenter.h"

#include <QPainter>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

namespace halvane::device {

namespace {

using C = ui::HDCLUICenter;

constexpr int kLineHeight = 20;

QFont fontOf(const util::StyledText::Style& style) {
    const bool bold = style.fontName && style.fontName->ends_with("-Bold");
    QFont font = C::font(C::Type::Caption, bold ? QFont::Bold : QFont::Normal);
    if (style.fontSize) font.setPixelSize(qRound(*style.fontSize));
    return font;
}

QTextCharFormat formatOf(const QFont& font, const QColor& color) {
    QTextCharFormat format;
    format.setFont(font);
    format.setForeground(color);
    return format;
}

void apply(const util::StyledText& summary, const util::StyledText::Run& run, QTextDocument& document) {
    const auto positionOf = [&summary](std::size_t offset) {
        return static_cast<int>(QString::fromUtf8(summary.text.data(), static_cast<qsizetype>(offset)).size());
    };
    QTextCursor cursor(&document);
    cursor.setPosition(positionOf(run.offset));
    cursor.setPosition(positionOf(run.offset + run.length), QTextCursor::KeepAnchor);
    cursor.mergeCharFormat(formatOf(fontOf(run.style), C::colorText1));
    if (!run.style.lineSpacing) return;
    QTextBlockFormat spacing;
    spacing.setBottomMargin(*run.style.lineSpacing);
    cursor.mergeBlockFormat(spacing);
}

}  // namespace

HardwareSummaryView::HardwareSummaryView(QWidget* parent) : QLabel(parent) {
    setObjectName(QStringLiteral("infoTextView"));
    setTextFormat(Qt::RichText);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setFocusPolicy(Qt::StrongFocus);
    setAlignment(Qt::AlignLeft | Qt::AlignTop);
    setWordWrap(true);
    setContentsMargins(padding, 0, padding, 0);
}

void HardwareSummaryView::setSummary(const util::StyledText& summary) {
    // A document would make one line's end of two characters, and the runs would no longer fit.
    const QString plain = QString::fromStdString(summary.text).replace(u'\r', u' ');
    QTextDocument document;
    document.setPlainText(plain);
    QTextCursor all(&document);
    all.select(QTextCursor::Document);
    all.setCharFormat(formatOf(fontOf({}), C::colorText2));
    QTextBlockFormat line;
    line.setLineHeight(kLineHeight, QTextBlockFormat::MinimumHeight);
    all.mergeBlockFormat(line);
    for (const auto& run : summary.runs) apply(summary, run, document);
    setText(document.toHtml());
    setAccessibleName(plain);
}

void HardwareSummaryView::paintEvent(QPaintEvent* event) {
    QLabel::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    ring_.paint(painter, rect());
}

void HardwareSummaryView::focusInEvent(QFocusEvent* event) {
    ring_.focusIn(*event);
    QLabel::focusInEvent(event);
    update();
}

void HardwareSummaryView::focusOutEvent(QFocusEvent* event) {
    ring_.focusOut(*event);
    QLabel::focusOutEvent(event);
    update();
}

}  // namespace halvane::device
