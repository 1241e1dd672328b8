// Coordinate rotation and conversion on plain arrays of points.
//
// A direction cosine matrix R (3 x 3, row-major) rotates the coordinate
// frame: a point p is expressed in the rotated frame as R p. Euler angles
// (a1, a2, a3) with a convention (the three axes) give R = M3 M2 M1, each Mi
// the frame rotation about its axis.
#pragma once
#include <cstdint>

namespace jq::geo {

constexpr int32_t kConventions = 12;  // codes 0..11
constexpr int32_t kConversions = 6;   // codes 0..5

// x' = x cos a + y sin a, y' = y cos a - x sin a.
void rotate_2d(const double* x, const double* y, int64_t n, double angle, double* xo, double* yo);
// p' = R p for every point.
void rotate_3d(const double* x, const double* y, const double* z, int64_t n, const double r[9], double* xo,
               double* yo, double* zo);
// R from Euler angles; 0 or a code of the matrix product.
int32_t euler_to_matrix(const double angles[3], int32_t convention, double r[9]);
// Euler angles from R; the middle angle in [-pi/2, pi/2] for three distinct
// axes, in [0, pi] when the first axis repeats; a locked gimbal sets the
// third angle to 0.
void matrix_to_euler(const double r[9], int32_t convention, double angles[3]);
// Converts n points between Cartesian, spherical and cylindrical forms
// (codes 0..5); degrees != 0 reads and writes angles in degrees.
void convert(const double* a, const double* b, const double* c, int64_t n, int32_t conversion, bool degrees,
             double* o1, double* o2, double* o3);

}  // namespace jq::geo
