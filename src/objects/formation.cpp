// SPDX-License-Identifier: MIT
#include "objects/formation.h"

Formation::Formation(int originX, int originY, int cellWidth, int cellHeight, int columns, int rows,
                     int areaWidth, int areaHeight)
    : fieldWidth(areaWidth), fieldHeight(areaHeight) {
    setX(originX);
    setY(originY);
    setElementWidth(cellWidth);
    setElementHeight(cellHeight);
    setNumberOfElementsHorizontal(columns);
    setNumberOfElementsVertical(rows);
}

void Formation::setX(int value) {
    x = value;
}

void Formation::setY(int value) {
    y = value;
}

void Formation::setElementWidth(int value) {
    elementWidth = value;
}

void Formation::setElementHeight(int value) {
    elementHeight = value;
}

void Formation::setNumberOfElementsHorizontal(int value) {
    numberOfElementsHorizontal = value;
}

void Formation::setNumberOfElementsVertical(int value) {
    numberOfElementsVertical = value;
}

int Formation::setXrelative(int dx) {
    x += dx;
    return x;
}

int Formation::setYrelative(int dy) {
    y += dy;
    return y;
}

void Formation::setGoingLeft(bool going) {
    goingLeft = going;
}

void Formation::setGoingRight(bool going) {
    goingRight = going;
}

void Formation::setGoingUp(bool going) {
    goingUp = going;
}

void Formation::setGoingDown(bool going) {
    goingDown = going;
}

int Formation::getX() {
    return x;
}

int Formation::getY() {
    return y;
}

int Formation::getElementWidth() {
    return elementWidth;
}

int Formation::getElementHeight() {
    return elementHeight;
}

int Formation::getNumberOfElementsHorizontal() {
    return numberOfElementsHorizontal;
}

int Formation::getNumberOfElementsVertical() {
    return numberOfElementsVertical;
}

int Formation::getFieldWidth() {
    return fieldWidth;
}

int Formation::getFieldHeight() {
    return fieldHeight;
}

bool Formation::getGoingLeft() {
    return goingLeft;
}

bool Formation::getGoingRight() {
    return goingRight;
}

bool Formation::getGoingUp() {
    return goingUp;
}

bool Formation::getGoingDown() {
    return goingDown;
}
