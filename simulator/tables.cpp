// The analyser's figures as the simulated device has them.
#include "fia/freq_tables.h"
#include "simulator/state.h"

fia_figures fia_figures_in_use(void) {
    return {simulated.setup.figures.rows, &simulated.setup.figures.tunables};
}
