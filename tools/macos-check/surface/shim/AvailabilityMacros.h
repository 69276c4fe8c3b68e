// GoogleTest asks for it and uses nothing of it.
#pragma once
