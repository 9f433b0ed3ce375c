#include "qt/HelpWindow.h"

#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QTextBrowser>

#include "qt/MainWindow.h"
#include "qt/TextConversion.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

QTextBrowser* HelpBrowser() {
  static QPointer<QTextBrowser> Browser;
  if (Browser.isNull()) {
    Browser = new QTextBrowser(TopWindow());
    Browser->setWindowFlag(Qt::Window);
    Browser->setWindowTitle("Zelvanor Help");
    Browser->setOpenExternalLinks(true);
    Browser->resize(640, 520);
  }
  return Browser;
}

}  // namespace

void ShowHelpWindow(const Text& File, HelpCommand /*Command*/) {
  QFile Source(PathToQt(File));
  if (!Source.open(QIODevice::ReadOnly)) return ShowStatus("There is no help file " + File + ".");
  const QString Content = ToQt(Source.readAll().toStdString());
  QTextBrowser* Browser = HelpBrowser();
  Browser->setSearchPaths({QFileInfo(Source).absolutePath()});
  if (Qt::mightBeRichText(Content)) {
    Browser->setHtml(Content);
  } else {
    Browser->setPlainText(Content);
  }
  Browser->show();
  Browser->raise();
  Browser->activateWindow();
}

}  // namespace zelvanor
