#pragma once

#include <QColor>
#include <QString>

#include "basic/Types.h"
#include "platform/Controls.h"

namespace zelvanor {

// The program's texts are bytes. They are shown as UTF-8 where they are that, else as Latin-1; what the user types goes
// back as UTF-8.
QString ToQt(TextView Value);
Text FromQt(const QString& Value);

// With line feeds for every form of line end.
QString ToQtLines(TextView Value);

// File names are bytes of the file system.
QString PathToQt(const Text& Path);
Text PathFromQt(const QString& Path);

// A caption without its access mark, "&&" being an ampersand.
QString PlainCaption(TextView Caption);

QColor ToQt(Colour Value);
Colour FromQt(const QColor& Value);

inline int PixelsFromTwips(int Twips) { return Twips / TwipsPerPixelX; }

}  // namespace zelvanor
