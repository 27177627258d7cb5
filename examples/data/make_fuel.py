"""Writes fuel.csv, the demo's data set: 60 made-up vehicles with engine size (litres),
weight (tonnes), age (years), drive (front, rear or all wheels), fuel use (litres per
100 km) and a frequency weight (how many identical vehicles the row stands for), then
three rows the procedure drops. Drive is drawn from a stream of its own, so the other
numbers stay those of the data set before it had drive; fuel use does not depend on it.
Run: python3 make_fuel.py > fuel.csv"""
import random

random.seed(920)
drives = random.Random(14)
print("engine,weight,age,drive,fuel,count")
for _ in range(60):
    engine = round(random.uniform(1.0, 4.5), 1)
    weight = round(0.8 + 0.25 * engine + random.gauss(0.0, 0.12), 2)
    age = random.randint(0, 15)
    fuel = 2.1 + 1.35 * engine + 2.4 * weight + 0.06 * age + random.gauss(0.0, 0.45)
    drive = drives.choices(("front", "rear", "all"), weights=(5, 3, 2))[0]
    print(f"{engine},{weight},{age},{drive},{fuel:.2f},{random.randint(1, 3)}")
# Rows the procedure must drop: a zero and an empty frequency weight, a missing response.
print("2.0,1.30,4,front,9.80,0")
print("3.5,1.70,7,all,12.10,")
print("2.8,1.40,3,rear,,1")
