// The common look of a secondary screen: the form colour and the font of the edition.
#pragma once

class QWidget;

void ApplyCommonFormLook(QWidget& form);
