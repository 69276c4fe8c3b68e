#!/bin/bash
# Double-click this file on a Mac to build Quorin and try it out with your Excel. Close all workbooks
# first. It takes some minutes; the report opens at the end and lies on the desktop.
cd "$(dirname "$0")" && ./run --self-test
