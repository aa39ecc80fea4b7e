#include "companions/settings/page.h"
