// The framework's design-time interfaces in one include: palette, property editors and their
// registry, the designer and its dialogs (framework layer).
#pragma once

#include "IDesigner.h"
#include "PropertyEditorRegistry.h"
#include "TComponentPalette.h"
#include "TComponentProperty.h"
#include "TEnumProperty.h"
#include "TFloatProperty.h"
#include "TIntegerProperty.h"
#include "TOpenDialog.h"
#include "TPropertyEditor.h"
#include "TStringProperty.h"
