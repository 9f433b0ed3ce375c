#pragma once

#include <QTextBrowser>

namespace zelvanor {

// Shows a page of the manual: what Markdown leaves plain (tables, code, pictures wider than the page) is dressed in the
// colours of the desktop, headings become anchors, and words that were searched for are marked.
class HelpPage : public QTextBrowser {
 public:
  explicit HelpPage(QWidget* Parent);

  // Marks every place of these words, in this page and in those opened next; scrolls to the first one.
  void MarkWords(const QStringList& Words);
  // Selects the next or the previous place of a text, round the end of the page. False when it stands nowhere.
  bool FindText(const QString& Wanted, bool Backward);

  QVariant loadResource(int Type, const QUrl& Name) override;

 protected:
  void changeEvent(QEvent* Change) override;
  void resizeEvent(QResizeEvent* Resize) override;

 private:
  void DressPage(const QUrl& Page);
  void ShowMarks(bool Scroll);

  QString Folder;  // of the page shown
  QStringList Marked;
};

}  // namespace zelvanor
