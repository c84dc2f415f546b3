# What is a device, what is kept; then the run.
PRIMitive CLASS
PROPerty INStance S CLASS VALUE
PROPerty INStance R GAIN
PROPerty PIN S PIN PINTYPE
PROPerty NET S NET
GENerate DATa ON
RUN
BYE
