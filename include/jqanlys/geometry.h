/* Geometry: rotation, translation and conversion of point sets, and Euler
 * angles <-> direction cosine matrices.
 *
 * Points are separate coordinate arrays of one length n. Every export returns
 * its status: 0, -20003 for n below 1, -20008 for arrays of different
 * lengths or a matrix that is not 3 x 3, -20061 for a convention, mode,
 * conversion or unit out of range, -20001 when an output cannot be sized. On
 * an error every output array is emptied and every angle output is NaN.
 *
 * A direction cosine matrix R (3 x 3, row-major) rotates the coordinate
 * frame: a point p becomes R p. Euler angles (a1, a2, a3) in radians give
 * R = M3 M2 M1, Mi the frame rotation by ai about the convention's i-th axis:
 * 0 XYZ, 1 XZY, 2 YXZ, 3 YZX, 4 ZXY, 5 ZYX, 6 XYX, 7 XZX, 8 YXY, 9 YZY,
 * 10 ZXZ, 11 ZYZ. Exports without a convention argument use 10. */
#ifndef JQANLYS_GEOMETRY_H
#define JQANLYS_GEOMETRY_H
#ifdef __cplusplus
extern "C" {
#endif

/* x' = x cos(angle) + y sin(angle), y' = y cos(angle) - x sin(angle). */
JQ_API int32_t CoordRotation2D_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, double angle, JQ_OUT JQArrF64 x_out, JQ_OUT JQArrF64 y_out);
JQ_API int32_t CoordRotationEuler2011_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_IN JQArrF64 z, double a1, double a2, double a3, uint32_t convention, JQ_OUT JQArrF64 x_out, JQ_OUT JQArrF64 y_out, JQ_OUT JQArrF64 z_out);
JQ_API int32_t CoordRotationEuler_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_IN JQArrF64 z, double a1, double a2, double a3, JQ_OUT JQArrF64 x_out, JQ_OUT JQArrF64 y_out, JQ_OUT JQArrF64 z_out);
/* mode 0: the matrix holds the angles between the axes (their cosines are
 * used); mode 1: it holds the direction cosines. */
JQ_API int32_t CoordRotationDirect_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_IN JQArrF64 z, JQ_IN JQMatF64 matrix, uint32_t mode, JQ_OUT JQArrF64 x_out, JQ_OUT JQArrF64 y_out, JQ_OUT JQArrF64 z_out);
JQ_API int32_t CartesianShift2D_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, double dx, double dy, JQ_OUT JQArrF64 x_out, JQ_OUT JQArrF64 y_out);
JQ_API int32_t CartesianShift3D_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_IN JQArrF64 z, double dx, double dy, double dz, JQ_OUT JQArrF64 x_out, JQ_OUT JQArrF64 y_out, JQ_OUT JQArrF64 z_out);
/* conversion: 0 Cartesian -> spherical (r, azimuth, angle from +Z);
 * 1 spherical -> Cartesian; 2 Cartesian -> cylindrical (rho, theta, z);
 * 3 cylindrical -> Cartesian; 4 cylindrical about Y (rho, y, theta) ->
 * Cartesian; 5 Cartesian -> cylindrical about Y. unit: 0 radians, 1 degrees. */
JQ_API int32_t CoordConversion_head(JQ_IN JQArrF64 a, JQ_IN JQArrF64 b, JQ_IN JQArrF64 c, uint32_t conversion, uint32_t unit, JQ_OUT JQArrF64 out1, JQ_OUT JQArrF64 out2, JQ_OUT JQArrF64 out3);
/* The matrix output is sized 3 x 3. */
JQ_API int32_t Euler2Direction2011_head(double a1, double a2, double a3, uint32_t convention, JQ_OUT JQMatF64 matrix);
JQ_API int32_t Euler2Direction_head(double a1, double a2, double a3, JQ_OUT JQMatF64 matrix);
/* The middle angle lies in [-pi/2, pi/2] for three distinct axes and in
 * [0, pi] for a repeated first axis; at gimbal lock (the deciding element
 * exactly +-1) the third angle is 0. */
JQ_API int32_t Direction2Euler2011_head(JQ_IN JQMatF64 matrix, uint32_t convention, JQ_OUT double* a1, JQ_OUT double* a2, JQ_OUT double* a3);
JQ_API int32_t Direction2Euler_head(JQ_IN JQMatF64 matrix, JQ_OUT double* a1, JQ_OUT double* a2, JQ_OUT double* a3);

#ifdef __cplusplus
}
#endif
#endif
