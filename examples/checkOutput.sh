#!/bin/sh
# Runs a program and compares what it prints with a file: checkOutput.sh EXPECTED PROGRAM [ARGUMENTS...]
# Line ends of the other platform do not count.
expected=$1
shift
"$@" | tr -d '\r' | diff "$expected" - && echo "$* prints what $expected says"
