#pragma once

#include <QLabel>

class QPushButton;

namespace quietlark {

/// Text that is never taken for markup, whatever it looks like, and that may take several lines.
[[nodiscard]] QLabel* makePlainLabel(const QString& text);

/// The same in bold, above a part of a page.
[[nodiscard]] QLabel* makeHeading(const QString& text);

/// The same, larger still, above a page.
[[nodiscard]] QLabel* makeTitle(const QString& text);

/// The same with less weight, below a heading.
[[nodiscard]] QLabel* makeCaption(const QString& text);

/// A button with some air around its text, for the middle of a page.
[[nodiscard]] QPushButton* makeButton(const QString& text);

/// Gives any button some air around the text that it has now.
void giveAir(QPushButton& button);

/// A narrow bar that says that something is going on: `what`, to a screen reader.
[[nodiscard]] QWidget* makeBusyBar(const QString& what);

}  // namespace quietlark
