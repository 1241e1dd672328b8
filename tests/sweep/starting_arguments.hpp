// Starting arguments for the exports whose valid call the sweep's generic
// search cannot find. Each entry names exports (space-separated) and
// parameter values, the other parameters keeping the search's choice.
// Handles read ROWS[xCOLS][/DATA] (DATA ramp, spd, zero, a constant or
// elements in order, repeated to fill), scalars and pointees a
// number; '?' marks a parameter only some of the named exports have.
// Packed triangles of side 4 hold 10 elements.
#pragma once

namespace sweep {

struct StartingArguments {
  const char* names;
  const char* values;
};

const StartingArguments kStartingArguments[] = {
    {"TriDiagEqsByLU_head CxTriDiagEqsByLU_head", "sub=3/1 diag=4/4 super=3/1 b=4"},
    {"TriDiagEqsSetByLU_head CxTriDiagEqsSetByLU_head", "sub=3/1 diag=4/4 super=3/1 b=4x2"},
    {"TriDiagLU_head CxTriDiagLU_head", "sub=3/1 diag=4/4 super=3/1"},
    {"Schur80_head CxSchur80_head", "a=4x4/spd from=0 to=1"},
    {"QZ80_head CxQZ80_head", "a=4x4/spd b=4x4/spd from=0 to=1"},
    {"Sylvester81_head CxSylvester81_head", "a=4x4/spd b=3x3/spd c=4x3 trans_a=0 trans_b=1 sign=-1"},
    {"Compact_to_Matrix_head CxCompact_to_Matrix_head CompactToMatrix_H CxCompactToMatrix_H", "packed=10/ramp"},
    {"CholeskyLinEqs_head CxCholeskyLinEqs_head", "factor=10/ramp b=4"},
    {"Cholesky_InvMatrix_head CxCholesky_InvMatrix_head", "factor=10/ramp"},
    {"TriLinEqs_head CxTriLinEqs_head", "l=10/ramp b=4"},
    {"TriEqsSetDri_head CxTriEqsSetDri_head", "l=10/ramp b=4x2"},
    {"Tri_InvMatrix_head CxTri_InvMatrix_head", "l=10/ramp"},
    {"EigenVBack_head CxEigenVBack_head", "vectors=4x4/spd scale=4/1 ilo=0 ihi=3 job=0 side=0"},
    {"BWCoefs BWCoefs90 ChebyshevCoefs ChebyshevCoefs90 InvChebyshevCoefs InvChebyshevCoefs90 EllipticCoefs "
     "EllipticCoefs90 BesselCoefs BesselCoefs90",
     "fs=1000 fl=100 fh=200 order=4 type=0 ?ripple_db=1 ?attenuation_db=60 ?topology=0"},
    {"IIR_Filter2 CxSigIIR_Filter2 zeroPhaseCascadeFiltH",
     "topology=0 reverse=2/-0.5,0.25 forward=3/0.25,0.5,0.25 flag=0 ?state=4/zero ?state1=4/zero ?state2=4/zero"},
    {"Parks", "taps=21 fs=1 bands=2x4/1,0,0.2,1,0,0.3,0.5,1 type=0 iterations=0"},
    {"FIRCoefs", "fs=1000 fl=100 fh=200 taps=21 type=0"},
    {"FIRNarrowCoef_head FIRnarrowFilter_head CxSigFIRnarrowFilter_head",
     "fs=1000 passband=50 stopband=70 ripple=0.01 attenuation=40 type=0 factor=0"},
    {"ConfBndPoly_head PredBndPoly_head", "weights=16/1 coefficients=3 level=0.95"},
    {"BoundLinearFit_head BoundLinearFitLAR_head BoundLinearFitBi_head BoundExpFit_head BoundPowerFit_head "
     "BoundLogFit_head",
     "lower=2/-1000 upper=2/1000"},
    {"BoundGaussianFit_head", "lower=3/-1000 upper=3/1000"},
    {"CoordRotationDirect_head", "matrix=3x3/spd mode=1"},
    {"CoordConversion_head", "conversion=0 unit=0"},
    {"Direction2Euler2011_head Direction2Euler_head", "matrix=3x3/spd"},
};

}  // namespace sweep
