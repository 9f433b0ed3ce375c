#include "qt/help/FindBar.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace zelvanor {

FindBar::FindBar(HelpPage& Page, QWidget* Parent) : QWidget(Parent), Page(Page) {
  auto* Row = new QHBoxLayout(this);
  auto* Name = new QLabel("&Find in page:", this);
  auto* Next = new QPushButton("&Next", this);
  auto* Previous = new QPushButton("&Previous", this);
  Name->setBuddy(Field);
  Row->addWidget(Name);
  Row->addWidget(Field);
  Row->addWidget(Next);
  Row->addWidget(Previous);
  connect(Field, &QLineEdit::returnPressed, this, [this] { FindNext(false); });
  connect(Next, &QPushButton::clicked, this, [this] { FindNext(false); });
  connect(Previous, &QPushButton::clicked, this, [this] { FindNext(true); });
  hide();
}

void FindBar::Open() {
  show();
  Field->setFocus();
  Field->selectAll();
}

void FindBar::FindNext(bool Backward) {
  if (Field->text().isEmpty()) return Open();
  if (!Page.FindText(Field->text(), Backward)) QApplication::beep();
}

}  // namespace zelvanor
