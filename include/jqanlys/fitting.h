/* Curve fitting. */
#ifndef JQANLYS_FITTING_H
#define JQANLYS_FITTING_H
#endif
