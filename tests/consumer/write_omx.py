#!/usr/bin/env python3
"""Writes an OMX file as other programs do, with the numbers 0 to 8: tests/consumer/write_omx.py FILE"""
import sys

import h5py
import numpy as np

with h5py.File(sys.argv[1], "w") as file:
    file.attrs["OMX_VERSION"] = np.bytes_("0.2")
    file.attrs["SHAPE"] = np.array([3, 3], "int32")
    file.create_dataset("data/trips", data=np.arange(9.0).reshape(3, 3), chunks=(2, 2), compression="gzip")
    file.create_dataset("lookup/zone", data=np.array([10, 20, 30]))
